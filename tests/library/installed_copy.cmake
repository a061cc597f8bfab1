# Installs the build into a fresh folder and runs the example hosts against that copy: found by the CMake package,
# found by pkg-config, and loaded by name.
function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE output)
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect_output expected)
  run(${ARGN})
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${ARGN} printed:\n${output}\nand not:\n${expected}")
  endif()
endfunction()

set(prefix ${WORK}/prefix)
set(differences "   0   5  10   0\n   0  30   0  80\n")
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})

# The CMake package, in C99 and in C++.
run(${CMAKE_COMMAND} -S ${EXAMPLES} -B ${WORK}/examples -G Ninja -DCMAKE_BUILD_TYPE=Release
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_C_FLAGS=${C_FLAGS} -DCMAKE_CXX_FLAGS=${CXX_FLAGS})
run(${CMAKE_COMMAND} --build ${WORK}/examples)
expect_output("${differences}" ${WORK}/examples/difference)
expect_output("lumCV Sprite .*2021.11.0" ${WORK}/examples/version)
expect_output("replicate  255 255 241 179.*top only   194 194 184 140" ${WORK}/examples/blur)
expect_output("\n[.]+#########[.]+\n[.]+###[.]+###[.]+\n.*\n[.]+#############[.]+\n" ${WORK}/examples/edges)
expect_output("^8 corners\n 10   8\n.*53  40\n$" ${WORK}/examples/corners)
expect_output("^[^\n]*moved by 2.5, -1.5\n[^\n]*moved by 2.5, -1.5\n[^\n]*moved by 2.5, -1.5\n$" ${WORK}/examples/track)
expect_output("[.]+\n[.]+#####[.]+\n[.]+#####[.]+\n" ${WORK}/examples/background)
expect_output("\n3333[|][|]1+[|]2+[|][|]3333\n" ${WORK}/examples/watershed)
expect_output("^largest error 214 before, [1-9] after\n$" ${WORK}/examples/inpaint)
expect_output("^strips equal the whole; memory below 150 kB instead of 2 MB\n$" ${WORK}/examples/tiles)

# Loaded by name, in a process that knew nothing of it; the same host as C99 and as C++.
file(GLOB_RECURSE library ${prefix}/liblumcv.so)
expect_output("10 0 10 155" ${WORK}/examples/load_by_name ${library})
separate_arguments(cxx_flags UNIX_COMMAND "${CXX_FLAGS} -I${prefix}/include")
run(${CXX_COMPILER} ${cxx_flags} -o ${WORK}/load_by_name -x c++ ${EXAMPLES}/load_by_name.c -ldl)
expect_output("10 0 10 155" ${WORK}/load_by_name ${library})

# pkg-config.
file(GLOB_RECURSE pc ${prefix}/lumcv.pc)
get_filename_component(pc_folder ${pc} DIRECTORY)
get_filename_component(library_folder ${library} DIRECTORY)
run(${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_folder} pkg-config --cflags --libs lumcv)
separate_arguments(flags UNIX_COMMAND "${C_FLAGS} ${EXAMPLES}/difference.c ${output} -Wl,-rpath,${library_folder}")
run(${C_COMPILER} -std=c99 -o ${WORK}/difference ${flags})
expect_output("${differences}" ${WORK}/difference)
