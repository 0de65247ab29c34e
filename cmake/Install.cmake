# What is installed where: libraries and development files; the texts and the tool install themselves.
include(CMakePackageConfigHelpers)

install(TARGETS frudata frudata_openipmi EXPORT frudata-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT library NAMELINK_COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/frudata DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

file(RELATIVE_PATH FRUDATA_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
foreach(name frudata frudata-openipmi)
  configure_file(packaging/${name}.pc.in ${CMAKE_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

# find_package(frudata) gives the targets frudata::frudata and frudata::openipmi.
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/frudata)
install(EXPORT frudata-targets NAMESPACE frudata:: FILE frudata-config.cmake
  DESTINATION ${package} COMPONENT development)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/frudata-config-version.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/frudata-config-version.cmake DESTINATION ${package} COMPONENT development)

# A page of docs/man, with the version in it.
function(install_manual page component)
  configure_file(${CMAKE_SOURCE_DIR}/docs/man/${page} ${CMAKE_BINARY_DIR}/man/${page} @ONLY)
  execute_process(COMMAND gzip -9nkf ${CMAKE_BINARY_DIR}/man/${page} COMMAND_ERROR_IS_FATAL ANY)
  install(FILES ${CMAKE_BINARY_DIR}/man/${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
endfunction()

# Together as in the tree, so that the documents' links lead to the examples.
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR}-doc COMPONENT documentation
  USE_SOURCE_PERMISSIONS PATTERN man EXCLUDE PATTERN Doxyfile EXCLUDE PATTERN __pycache__ EXCLUDE)
