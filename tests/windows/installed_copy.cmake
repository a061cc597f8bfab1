# Installs the build into a fresh folder and runs hosts against that copy, under Wine: the examples linked by the CMake
# package, one linked with an import library made from the .def file, one that loads by name and by ordinal, and the
# program. The zip that the installation packs holds the same files.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/../install/steps.cmake)

set(prefix ${WORK}/prefix)
set(examples ${prefix}/share/doc/lumcv/examples)
file(REMOVE_RECURSE ${WORK})
install_copy(${prefix} ${WORK}/lists)
set(ENV{WINEPATH} ${prefix}/bin)

run(${CMAKE_COMMAND} -S ${examples} -B ${WORK}/examples -G Ninja -DCMAKE_BUILD_TYPE=Release
    -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -Dlumcv_DIR=${prefix}/lib/cmake/lumcv)
run(${CMAKE_COMMAND} --build ${WORK}/examples)
expect_output("${differences}" ${WINE} ${WORK}/examples/difference.exe)
expect_output("lumCV Sprite .*2021.11.0" ${WINE} ${WORK}/examples/version.exe)

# Loaded by name and by ordinal.
string(REPLACE "/" "\\" dll ${prefix}/bin/lumcv.dll)
expect_output("10 0 10 155" ${WINE} ${WORK}/examples/windows_host.exe ${dll})

# An import library of another tool chain's making.
run(${DLLTOOL} --input-def ${prefix}/lib/lumcv.def --output-lib ${WORK}/lumcv.lib)
run(${C_COMPILER} -std=c99 -I${prefix}/include -o ${WORK}/difference.exe ${examples}/difference.c ${WORK}/lumcv.lib)
expect_output("${differences}" ${WINE} ${WORK}/difference.exe)

# The program: what it tells of the copy, and the distances of the pictures "ABDZ" and "BBBB".
expect_output("\nexports +680\nlibrary +[^\n]*prefix.bin.lumcv.dll\n.*\nlargest cache"
  ${WINE} ${prefix}/bin/lumcv.exe info)
file(WRITE ${WORK}/a.pgm "P5\n4 1\n255\nABDZ")
file(WRITE ${WORK}/b.pgm "P5\n4 1\n255\nBBBB")
run(${WINE} ${prefix}/bin/lumcv.exe absdiff ${WORK}/a.pgm ${WORK}/b.pgm -o ${WORK}/distances.pgm)
file(READ ${WORK}/distances.pgm distances HEX)
string(CONCAT expected 50350a 3420310a 3235350a 01000218)
if(NOT distances STREQUAL expected)
  message(FATAL_ERROR "lumcv.exe wrote ${distances}")
endif()

# The file that holds all of it.
file(GLOB zip ${BUILD}/lumcv-*-win32.zip)
set(unpacked ${WORK}/unpacked)
file(MAKE_DIRECTORY ${unpacked})
file(ARCHIVE_EXTRACT INPUT ${zip} DESTINATION ${unpacked})
file(GLOB_RECURSE packed RELATIVE ${unpacked} ${unpacked}/*)
file(GLOB_RECURSE installed RELATIVE ${prefix} ${prefix}/*)
if(NOT packed STREQUAL installed)
  message(FATAL_ERROR "The zip holds\n${packed}\nand not\n${installed}")
endif()
file(GLOB_RECURSE headers RELATIVE ${TREE} ${TREE}/include/*.h)
foreach(file IN LISTS headers ITEMS bin/lumcv.dll bin/lumcore.dll bin/lumcv.exe lib/liblumcv.dll.a lib/liblumcore.dll.a
    lib/lumcv.def lib/lumcore.def lib/cmake/lumcv/lumcv-config.cmake LICENSE share/doc/lumcv/windows.md)
  if(NOT file IN_LIST packed)
    message(FATAL_ERROR "The zip lacks ${file}")
  endif()
endforeach()

# They are those of the build and of the tree, to the byte.
foreach(pair IN ITEMS bin/lumcv.dll:${BUILD}/lumcv.dll bin/lumcore.dll:${BUILD}/lumcore.dll bin/lumcv.exe:${BUILD}/lumcv.exe
    lib/lumcv.def:${BUILD}/lumcv.def LICENSE:${TREE}/LICENSE)
  string(REGEX MATCH "^([^:]+):(.+)$" whole ${pair})
  run(${CMAKE_COMMAND} -E compare_files ${unpacked}/${CMAKE_MATCH_1} ${CMAKE_MATCH_2})
endforeach()
