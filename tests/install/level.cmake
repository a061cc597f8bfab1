# A host and the program with the library for one LEVEL of processor, or `baseline`, of an installed copy: the loader takes that
# file where it may look for no other level, and the results are those of the first one.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)

set(prefix ${WORK}/prefix)
file(REMOVE_RECURSE ${WORK})
install_copy(${prefix} ${WORK}/lists)
build_examples(${prefix} ${WORK}/examples)

run(readelf -l ${WORK}/examples/difference)
string(REGEX MATCH "interpreter: ([^]]+)" found "${output}")
set(loader ${CMAKE_MATCH_1})
run(${loader} --help)
set(file ${LIBDIR}/glibc-hwcaps/${LEVEL}/liblumcv.so.1)
if(LEVEL STREQUAL baseline)
  set(file ${LIBDIR}/liblumcv.so.1)
elseif(NOT output MATCHES "${LEVEL} \\(supported")
  message("skipped: this processor does not have the vectors of ${LEVEL}")
  return()
endif()

set(at_level ${loader} --glibc-hwcaps-mask ${LEVEL})
expect_output("${prefix}/${file} " ${at_level} --list ${WORK}/examples/difference)
expect_output("/bin/\\.\\./${file} " ${at_level} --list ${prefix}/bin/lumcv)
expect_output("${differences}" ${at_level} ${WORK}/examples/difference)

# A picture that is not the same everywhere: the examples' own source text.
file(READ ${prefix}/share/doc/lumcv/examples/local_contrast.c text)
string(SUBSTRING "${text}" 0 3000 pixels)
file(WRITE ${WORK}/text.pgm "P5\n60 50\n255\n${pixels}")
foreach(mask IN ITEMS baseline ${LEVEL})
  run(${loader} --glibc-hwcaps-mask ${mask} ${WORK}/examples/local_contrast
    ${WORK}/text.pgm ${WORK}/blurred_${mask}.pgm ${WORK}/deviation_${mask}.pgm)
  set(printed_${mask} "${output}")
endforeach()
foreach(result IN ITEMS blurred deviation)
  file(SHA256 ${WORK}/${result}_baseline.pgm one)
  file(SHA256 ${WORK}/${result}_${LEVEL}.pgm other)
  if(NOT one STREQUAL other OR NOT printed_baseline STREQUAL printed_${LEVEL})
    message(FATAL_ERROR "${LEVEL} gives other results")
  endif()
endforeach()
