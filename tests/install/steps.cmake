# What the tests of this folder do in steps.

# Runs a command that must succeed; `output` is then what it has printed. Windows programs end lines in their own way.
function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE output)
  string(REPLACE "\r\n" "\n" output "${output}")
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect_output expected)
  run(${ARGN})
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${ARGN} printed:\n${output}\nand not:\n${expected}")
  endif()
endfunction()

# Installs BUILD below `prefix` and puts the list of what was installed into the folder `lists`. A list that a real
# installation may have left in the build stays as it is.
function(install_copy prefix lists)
  file(MAKE_DIRECTORY ${lists})
  set(manifest ${BUILD}/install_manifest.txt)
  if(EXISTS ${manifest})
    file(RENAME ${manifest} ${lists}/kept)
  endif()
  run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
  file(RENAME ${manifest} ${lists}/install_manifest.txt)
  if(EXISTS ${lists}/kept)
    file(RENAME ${lists}/kept ${manifest})
  endif()
endfunction()

# Configures and builds the installed examples in `folder` against the copy below `prefix`.
function(build_examples prefix folder)
  run(${CMAKE_COMMAND} -S ${prefix}/share/doc/lumcv/examples -B ${folder} -G Ninja -DCMAKE_BUILD_TYPE=Release
      -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_C_FLAGS=${C_FLAGS} -DCMAKE_CXX_FLAGS=${CXX_FLAGS})
  run(${CMAKE_COMMAND} --build ${folder})
endfunction()

set(differences "   0   5  10   0\n   0  30   0  80\n")
