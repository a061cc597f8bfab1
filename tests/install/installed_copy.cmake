# Installs the build into a fresh folder and runs the example hosts against that copy: found by the CMake package,
# found by pkg-config, and loaded by name; and takes it away again.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)

set(prefix ${WORK}/prefix)
set(libraries ${prefix}/${LIBDIR})
set(examples ${prefix}/share/doc/lumcv/examples)
file(REMOVE_RECURSE ${WORK})
install_copy(${prefix} ${WORK}/lists)

foreach(file IN ITEMS ${libraries}/liblumcv.so.${VERSION} ${libraries}/liblumcv.so.1 ${libraries}/liblumcv.so ${libraries}/liblumcore.so.1 ${prefix}/include/lumcv_status.h
    ${prefix}/share/doc/lumcv/LICENSE ${prefix}/share/doc/lumcv/guide.md ${examples}/difference.c)
  if(NOT EXISTS ${file})
    message(FATAL_ERROR "${file} is not installed")
  endif()
endforeach()

# The CMake package, in C99 and in C++.
build_examples(${prefix} ${WORK}/examples)
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

# The program of the guide, over a picture whose left half is '0' and whose right half is 'z'. In 7 x 7 pixels, three columns of
# which are on the other side, the deviation is (122 - 48) sqrt(21 28) / 49 = 36.621.
string(REPEAT "00000000zzzzzzzz" 16 pixels)
file(WRITE ${WORK}/halves.pgm "P5\n16 16\n255\n${pixels}")
expect_output("L2 distance of the blurred picture: [1-9][0-9]*\\.[0-9]+\nlargest deviation: 36\\.621 around \\([78], 3\\)\n"
  ${WORK}/examples/local_contrast ${WORK}/halves.pgm ${WORK}/blurred.pgm ${WORK}/deviation.pgm)
file(SIZE ${WORK}/deviation.pgm bytes)
if(NOT bytes EQUAL 113)
  message(FATAL_ERROR "a picture of 10 x 10 pixels has ${bytes} bytes")
endif()
file(WRITE ${WORK}/short.pgm "P5\n16 16\n255\n0000")
execute_process(COMMAND ${WORK}/examples/local_contrast ${WORK}/short.pgm ${WORK}/b.pgm ${WORK}/d.pgm
  RESULT_VARIABLE result ERROR_VARIABLE error)
if(NOT result EQUAL 1 OR NOT error MATCHES "cut short")
  message(FATAL_ERROR "a picture cut short: ${result} ${error}")
endif()

# Loaded by name, in a process that knew nothing of it; the same host as C99 and as C++.
expect_output("10 0 10 155" ${WORK}/examples/load_by_name ${libraries}/liblumcv.so)
separate_arguments(cxx_flags UNIX_COMMAND "${CXX_FLAGS} -I${prefix}/include")
run(${CXX_COMPILER} ${cxx_flags} -o ${WORK}/load_by_name -x c++ ${examples}/load_by_name.c -ldl)
expect_output("10 0 10 155" ${WORK}/load_by_name ${libraries}/liblumcv.so)

# pkg-config.
run(${CMAKE_COMMAND} -E env PKG_CONFIG_LIBDIR=${libraries}/pkgconfig pkg-config --cflags --libs lumcv)
if(output MATCHES "\\.\\.")
  message(FATAL_ERROR "pkg-config names a folder by a detour: ${output}")
endif()
set(flags_of_package "${output}")
expect_output("^${VERSION}\n$" ${CMAKE_COMMAND} -E env PKG_CONFIG_LIBDIR=${libraries}/pkgconfig pkg-config --modversion lumcv)
separate_arguments(flags UNIX_COMMAND "${C_FLAGS} ${examples}/difference.c ${flags_of_package} -Wl,-rpath,${libraries}")
run(${C_COMPILER} -std=c99 -o ${WORK}/difference ${flags})
expect_output("${differences}" ${WORK}/difference)

# Nothing is left.
run(${CMAKE_COMMAND} -DBUILD=${WORK}/lists -P ${CMAKE_CURRENT_LIST_DIR}/../../cmake/uninstall.cmake)
file(GLOB_RECURSE left LIST_DIRECTORIES false ${prefix}/*)
if(left)
  message(FATAL_ERROR "left after the removal: ${left}")
endif()
