# Installs the build tree BUILD into a fresh prefix below FOLDER, builds examples/service against it, and runs it.
set(prefix ${FOLDER}/prefix)
set(example ${FOLDER}/service)
file(REMOVE_RECURSE ${prefix} ${example})

function(run)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nended with ${result}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})

set(flags "")
if(SANITIZE)
  set(flags "-fsanitize=${SANITIZE}")
endif()
run(${CMAKE_COMMAND} -S ${SOURCE}/examples/service -B ${example} -G ${GENERATOR}
  -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_CXX_FLAGS=${flags} -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${example})

# Nothing in the package leads back to the source tree.
file(GLOB_RECURSE files ${prefix}/lib/*.cmake)
if(NOT files)
  message(FATAL_ERROR "no package below ${prefix}/lib")
endif()
foreach(file IN LISTS files)
  file(READ ${file} text)
  string(FIND "${text}" "${SOURCE}/" found)
  if(NOT found EQUAL -1)
    message(FATAL_ERROR "${file} names the source tree")
  endif()
endforeach()

# A document without devices: it starts, prints nothing, and stops.
file(WRITE ${FOLDER}/empty.xml "<Kestrix><CommSystem/></Kestrix>\n")
run(${example}/service ${FOLDER}/empty.xml 0)
if(NOT output STREQUAL "")
  message(FATAL_ERROR "service printed for a document without devices:\n${output}")
endif()

# A document that doesn't exist is told by its name.
execute_process(COMMAND ${example}/service ${FOLDER}/absent.xml 0 ERROR_VARIABLE output RESULT_VARIABLE result)
if(NOT result EQUAL 2 OR NOT output MATCHES "absent.xml")
  message(FATAL_ERROR "service ended with ${result} for a document that doesn't exist:\n${output}")
endif()
