# The library without a preset: built by itself as `cmake -B build` does, and brought into other projects by
# add_subdirectory and by FetchContent. Each host is built and run.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)

file(REMOVE_RECURSE ${WORK})
cmake_host_system_information(RESULT cores QUERY NUMBER_OF_LOGICAL_CORES)
# One compilation serves all three, and the build for x64, where there is a compiler cache, which then must not see paths that
# are relative to a build. For the cache to find it, the flag of the presets is set.
unset(ENV{CCACHE_BASEDIR})
set(cache -DCMAKE_C_COMPILER_LAUNCHER=${LAUNCHER} -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} -DCMAKE_COMPILE_WARNING_AS_ERROR=ON)

# By itself: the Release library of this machine, and nothing else.
run(${CMAKE_COMMAND} -S ${TREE} -B ${WORK}/plain ${cache})
file(STRINGS ${WORK}/plain/CMakeCache.txt type REGEX "^CMAKE_BUILD_TYPE:")
if(NOT type STREQUAL "CMAKE_BUILD_TYPE:STRING=Release")
  message(FATAL_ERROR "a build without a type is ${type}")
endif()
run(${CMAKE_COMMAND} --build ${WORK}/plain --parallel ${cores})
if(EXISTS ${WORK}/plain/lumcv OR EXISTS ${WORK}/plain/tests OR NOT EXISTS ${WORK}/plain/liblumcv.so.1)
  message(FATAL_ERROR "a plain build is the library alone")
endif()
run(cc -std=c99 -I${TREE}/include ${TREE}/examples/difference.c -o ${WORK}/plain/host -L${WORK}/plain -llumcv
  -Wl,-rpath,${WORK}/plain)
expect_output("${differences}" ${WORK}/plain/host)

set(host "cmake_minimum_required(VERSION 3.25)\nproject(host LANGUAGES C)\n")
set(program "add_executable(host ${TREE}/examples/difference.c)\ntarget_link_libraries(host PRIVATE lumcv::lumcv)\n")
file(WRITE ${WORK}/subdirectory/CMakeLists.txt "${host}add_subdirectory(${TREE} lumcv)\n${program}")
file(WRITE ${WORK}/fetched/CMakeLists.txt "${host}include(FetchContent)
FetchContent_Declare(lumcv SOURCE_DIR ${TREE})
FetchContent_MakeAvailable(lumcv)\n${program}")
foreach(way IN ITEMS subdirectory fetched)
  run(${CMAKE_COMMAND} -S ${WORK}/${way} -B ${WORK}/${way}/build -DCMAKE_BUILD_TYPE=Release ${cache})
  run(${CMAKE_COMMAND} --build ${WORK}/${way}/build --parallel ${cores})
  expect_output("${differences}" ${WORK}/${way}/build/host)
endforeach()
