# What differs where the libraries are DLLs.

# lumcv_dll(target "NAME @ORDINAL"...): makes the library a DLL with these exports, which runs nothing of a C runtime
# when it is loaded. The .def file of the exports is left in the build folder; other tool chains make import libraries of
# their own from it.
function(lumcv_dll target)
  string(JOIN "\n    " exports ${ARGN})
  set(def ${CMAKE_BINARY_DIR}/${target}.def)
  file(CONFIGURE OUTPUT ${def} CONTENT "LIBRARY ${target}.dll\nEXPORTS\n    ${exports}\n" @ONLY)
  target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src/entry/load_entry.cpp ${def})
  set_target_properties(${target} PROPERTIES
    PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR} ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
  target_link_options(${target} PRIVATE -nostdlib -Wl,--entry,_lumLoadEntry@12
    -Wl,--dynamicbase,--nxcompat,--no-seh,--disable-auto-import,--no-insert-timestamp,--gc-sections)
endfunction()

# The maths functions of the system's C runtime, which every Windows has. The cross compiler's own are others, made of
# x87 instructions whose results depend on the precision that the host has set. A sine and a cosine are two calls there.
set(maths ${CMAKE_BINARY_DIR}/msvcrt_maths)
file(CONFIGURE OUTPUT ${maths}.def CONTENT "LIBRARY msvcrt.dll\nEXPORTS\n    atan2\n    cos\n    exp\n    sin\n" @ONLY)
add_custom_command(OUTPUT ${maths}.a
  COMMAND ${CMAKE_DLLTOOL} --input-def ${maths}.def --output-lib ${maths}.a DEPENDS ${maths}.def VERBATIM)
add_custom_target(msvcrt_maths_library DEPENDS ${maths}.a)
add_library(msvcrt_maths INTERFACE)
add_dependencies(msvcrt_maths msvcrt_maths_library)
target_link_libraries(msvcrt_maths INTERFACE ${maths}.a)
target_compile_options(msvcrt_maths INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fno-builtin-cos;-fno-builtin-sin>)

# Libraries of headers alone, which the program uses, are those of this machine.
set(header_libraries ${CMAKE_BINARY_DIR}/header_libraries)
file(MAKE_DIRECTORY ${header_libraries})
foreach(library IN ITEMS CLI nlohmann stb)
  file(CREATE_LINK /usr/include/${library} ${header_libraries}/${library} SYMBOLIC)
endforeach()
