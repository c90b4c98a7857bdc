# The consumer contract: libraries, headers under include/mapwright/, a CMake
# package with Mapwright::mapwright, a pkg-config file and the shipped catalogs.
include(CMakePackageConfigHelpers)

install(TARGETS mapwright-platform basalt mapwright
  EXPORT MapwrightTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

foreach(layer platform basalt refsys transform coord ui)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/${layer}/include/mapwright/
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mapwright
    FILES_MATCHING PATTERN "*.h")
endforeach()

# The Qt back end, when built: beside the platform library (where DoModal
# looks for it), in an export set of its own so that only a host asking for
# Mapwright::qt needs Qt.
if(TARGET mapwright-qt)
  install(TARGETS mapwright-qt
    EXPORT MapwrightQtTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(FILES ${PROJECT_SOURCE_DIR}/platform/qt/include/mapwright/qt.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mapwright)
  install(EXPORT MapwrightQtTargets
    NAMESPACE Mapwright::
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Mapwright)
endif()

install(DIRECTORY "${MAPWRIGHT_DATA_SOURCE_DIR}/Auxiliary Data"
  DESTINATION ${MAPWRIGHT_INSTALL_DATADIR})

install(EXPORT MapwrightTargets
  NAMESPACE Mapwright::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Mapwright)
configure_package_config_file(cmake/MapwrightConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/MapwrightConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Mapwright)
write_basic_package_version_file(
  ${CMAKE_CURRENT_BINARY_DIR}/MapwrightConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/MapwrightConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/MapwrightConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Mapwright)

# Relocatable: the prefix is found from the .pc file's own place.
file(RELATIVE_PATH MAPWRIGHT_PC_TO_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file(cmake/mapwright.pc.in ${CMAKE_CURRENT_BINARY_DIR}/mapwright.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mapwright.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
