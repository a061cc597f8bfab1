# The Python package `lumcv` for the system's Python, in the component `python`. It takes cffi at build time, for the
# declarations that are made from the public headers, and finds the libraries that are installed below the same prefix.
set(LUMCV_PYTHON /usr/bin/python3 CACHE FILEPATH "The Python that the package is installed for")
if(NOT CMAKE_SIZEOF_VOID_P EQUAL 8 OR LUMCV_SANITIZE OR NOT EXISTS ${LUMCV_PYTHON})
  return()
endif()
execute_process(COMMAND ${LUMCV_PYTHON} -c "import cffi, pycparser, sys; print('%d.%d' % sys.version_info[:2])"
  OUTPUT_VARIABLE python_version OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE python_lacks ERROR_QUIET)
if(python_lacks)
  message(STATUS "lumcv: ${LUMCV_PYTHON} has no cffi, the Python package is left out")
  return()
endif()

file(GLOB_RECURSE python_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/python/*.py ${PROJECT_SOURCE_DIR}/include/*.h)
add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/python/lumcv/_ffi.py
  COMMAND ${LUMCV_PYTHON} -B ${PROJECT_SOURCE_DIR}/python/stage.py ${PROJECT_BINARY_DIR}/python
  DEPENDS ${python_sources} COMMENT "Python package" VERBATIM)
add_custom_target(lumcv_python ALL DEPENDS ${PROJECT_BINARY_DIR}/python/lumcv/_ffi.py)

# Where Debian's Python looks below a prefix, which is known for certain only when it is installed.
install(CODE "
  set(folder lib/python${python_version}/dist-packages)
  if(CMAKE_INSTALL_PREFIX MATCHES \"^/usr/?\$\")
    set(folder lib/python3/dist-packages)
  endif()
  file(INSTALL \"${PROJECT_BINARY_DIR}/python/lumcv\" DESTINATION \"\${CMAKE_INSTALL_PREFIX}/\${folder}\"
    PATTERN __pycache__ EXCLUDE)" COMPONENT python)
