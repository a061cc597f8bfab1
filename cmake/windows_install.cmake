# What a Windows host takes besides: the lists of exports for other tool chains, the licence, and the whole in one file.
install(FILES ${CMAKE_BINARY_DIR}/lumcv.def ${CMAKE_BINARY_DIR}/lumcore.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES LICENSE DESTINATION .)
install(CODE "set(zip \"${CMAKE_BINARY_DIR}/lumcv-${PROJECT_VERSION}-win32.zip\")")
install(CODE [[
  # `cmake --install --prefix` may name a folder below the current one.
  file(REAL_PATH ${CMAKE_INSTALL_PREFIX} prefix)
  set(files "")
  foreach(file IN LISTS CMAKE_INSTALL_MANIFEST_FILES)
    file(REAL_PATH ${file} file)
    file(RELATIVE_PATH file ${prefix} ${file})
    string(APPEND files "${file}\n")
  endforeach()
  file(WRITE ${zip}.files "${files}")
  file(REMOVE ${zip})
  execute_process(COMMAND ${CMAKE_COMMAND} -E tar cf ${zip} --format=zip --files-from=${zip}.files
    WORKING_DIRECTORY ${prefix} COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE ${zip}.files)
  message(STATUS "Packed: ${zip}")
]])
