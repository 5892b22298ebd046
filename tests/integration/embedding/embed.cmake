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

# Supervises one meter of a plant: the values that it prints are those of a live device.
file(WRITE ${FOLDER}/plant.xml "<Plant Series=\"${prefix}/share/kestrix/demo/household/household_1min.csv\"
  Profiles=\"${prefix}/share/kestrix/devices\">
  <Converter Name=\"NORTH\" Address=\"127.0.0.1\" Port=\"47311\">
    <Device Name=\"METER-1\" Profile=\"EM3\" Unit=\"1\" Scale=\"1\"/>
  </Converter>
</Plant>
")
file(WRITE ${FOLDER}/one.xml "<Kestrix><CommSystem>
  <Connections><Connection Name=\"NORTH\" Type=\"UDP\" Address=\"127.0.0.1\" Socket=\"47311\"/></Connections>
  <Devices><Device Name=\"METER-1\" Driver=\"EM3\" Connection=\"NORTH\" Unit=\"1\"/></Devices>
</CommSystem></Kestrix>
")
# Both run at once, and the plant ends by itself; one that starts late is asked again.
execute_process(COMMAND ${prefix}/bin/kestrix-plant ${FOLDER}/plant.xml --for 5
                COMMAND ${example}/service ${FOLDER}/one.xml 4 OUTPUT_VARIABLE output ERROR_VARIABLE problems
                RESULTS_VARIABLE results)
if(NOT results STREQUAL "0;0" OR NOT output MATCHES "METER-1.U1 2[0-9][0-9]")
  message(FATAL_ERROR "service ended with ${results} and printed for a live meter:\n${output}\n${problems}")
endif()

# The host with a window: a picture of its page, off screen, while a plant plays the meter.
if(WITH_UI)
  set(view ${FOLDER}/view)
  file(REMOVE_RECURSE ${view})
  run(${CMAKE_COMMAND} -S ${SOURCE}/examples/view -B ${view} -G ${GENERATOR}
    -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_CXX_FLAGS=${flags} -DCMAKE_PREFIX_PATH=${prefix})
  run(${CMAKE_COMMAND} --build ${view})
  set(ENV{QT_QPA_PLATFORM} offscreen)
  execute_process(COMMAND ${prefix}/bin/kestrix-plant ${FOLDER}/plant.xml --for 5
                  COMMAND ${view}/view ${FOLDER}/one.xml 4 ${FOLDER}/view.png
                  OUTPUT_VARIABLE output ERROR_VARIABLE problems RESULTS_VARIABLE results)
  if(NOT results STREQUAL "0;0" OR NOT EXISTS ${FOLDER}/view.png)
    message(FATAL_ERROR "view ended with ${results}:\n${output}\n${problems}")
  endif()
  file(SIZE ${FOLDER}/view.png size)
  if(size LESS 1000)
    message(FATAL_ERROR "the picture of view has ${size} bytes: its page is blank")
  endif()
  execute_process(COMMAND ${view}/view ${FOLDER}/absent.xml ERROR_VARIABLE problems RESULT_VARIABLE result)
  if(NOT result EQUAL 2 OR NOT problems MATCHES "absent.xml")
    message(FATAL_ERROR "view ended with ${result} for a document that doesn't exist:\n${problems}")
  endif()
endif()
