# Installation and the CMake package ZRCore: `find_package(ZRCore COMPONENTS core devices ui)` gives ZRCore::core,
# ZRCore::devices, ZRCore::ui and the folder of the resources as ZRCore_RESOURCES.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(ZR_PACKAGE_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/ZRCore)
set(ZR_RESOURCE_FOLDER ${CMAKE_INSTALL_DATADIR}/kestrix)

# zr_install_component(component target): the target as ZRCore::component.
function(zr_install_component component target)
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${component})
  install(TARGETS ${target} EXPORT ZRCore-${component} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(EXPORT ZRCore-${component} NAMESPACE ZRCore:: DESTINATION ${ZR_PACKAGE_FOLDER})
endfunction()

zr_install_component(core zrcore)
if(TARGET zrdevices)
  zr_install_component(devices zrdevices)
endif()

if(TARGET zrcoreui)
  zr_install_component(ui zrcoreui)
else()
  set(ZR_WITHOUT_UI PATTERN ui EXCLUDE)
endif()

# What hosts include, and what that includes.
install(DIRECTORY ${CMAKE_SOURCE_DIR}/src/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zrcore
  FILES_MATCHING PATTERN *.h
  PATTERN hosts EXCLUDE PATTERN simulation EXCLUDE ${ZR_WITHOUT_UI} PATTERN posix EXCLUDE PATTERN win32 EXCLUDE)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/resources/ DESTINATION ${ZR_RESOURCE_FOLDER})

foreach(program kestrix kestrixd kestrix-plant)
  if(TARGET ${program})
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()

configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/ZRCoreConfig.cmake.in
  ${CMAKE_BINARY_DIR}/ZRCoreConfig.cmake
  INSTALL_DESTINATION ${ZR_PACKAGE_FOLDER} PATH_VARS ZR_RESOURCE_FOLDER)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/ZRCoreConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/ZRCoreConfig.cmake ${CMAKE_BINARY_DIR}/ZRCoreConfigVersion.cmake
  DESTINATION ${ZR_PACKAGE_FOLDER})
