# Installs the build into a fresh folder and runs the example hosts against that copy, under Wine: linked by the CMake
# package, linked with an import library made from the .def file, and loaded by name and by ordinal.
include(${CMAKE_CURRENT_LIST_DIR}/hosts.cmake)

set(prefix ${WORK}/prefix)
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
set(ENV{WINEPATH} ${prefix}/bin)

run(${CMAKE_COMMAND} -S ${EXAMPLES} -B ${WORK}/examples -G Ninja -DCMAKE_BUILD_TYPE=Release
    -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -Dlumcv_DIR=${prefix}/lib/cmake/lumcv)
run(${CMAKE_COMMAND} --build ${WORK}/examples)
expect_output("${differences}" ${WINE} ${WORK}/examples/difference.exe)
expect_output("lumCV Sprite .*2021.11.0" ${WINE} ${WORK}/examples/version.exe)

# Loaded by name and by ordinal.
string(REPLACE "/" "\\" dll ${prefix}/bin/lumcv.dll)
expect_output("10 0 10 155" ${WINE} ${WORK}/examples/windows_host.exe ${dll})

# An import library of another tool chain's making.
run(${DLLTOOL} --input-def ${prefix}/lib/lumcv.def --output-lib ${WORK}/lumcv.lib)
run(${C_COMPILER} -std=c99 -I${prefix}/include -o ${WORK}/difference.exe ${EXAMPLES}/difference.c ${WORK}/lumcv.lib)
expect_output("${differences}" ${WINE} ${WORK}/difference.exe)

# The file that holds all of it.
file(GLOB zip ${BUILD}/lumcv-*-win32.zip)
file(MAKE_DIRECTORY ${WORK}/unpacked)
file(ARCHIVE_EXTRACT INPUT ${zip} DESTINATION ${WORK}/unpacked)
file(GLOB_RECURSE unpacked RELATIVE ${WORK}/unpacked ${WORK}/unpacked/*)
file(GLOB_RECURSE installed RELATIVE ${prefix} ${prefix}/*)
if(NOT unpacked STREQUAL installed)
  message(FATAL_ERROR "The zip holds\n${unpacked}\nand not\n${installed}")
endif()
foreach(file IN ITEMS bin/lumcv.dll bin/lumcore.dll include/lumcv.h include/lumcore.h lib/liblumcv.dll.a
    lib/liblumcore.dll.a lib/lumcv.def lib/lumcore.def LICENSE)
  if(NOT file IN_LIST unpacked)
    message(FATAL_ERROR "The zip lacks ${file}")
  endif()
endforeach()
