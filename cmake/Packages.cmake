# Debian packages: `cpack` in the build directory writes one for each installed component.
string(REGEX MATCH "^[^/]+/([^/]+)$" multiarch "${CMAKE_INSTALL_LIBDIR}")
set(multiarch "${CMAKE_MATCH_1}")
if(multiarch STREQUAL "i386-linux-gnu")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
elseif(multiarch STREQUAL "x86_64-linux-gnu")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE amd64)
else()
  return()
endif()

set(soname_package libfrudata${PROJECT_VERSION_MAJOR})
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME frudata)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The frudata authors <frudata@example.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development tool documentation)
if(TARGET frudata_lan)
  list(APPEND CPACK_COMPONENTS_ALL lan)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# What is built against a C library or runtime runs with it and with later ones.
execute_process(COMMAND getconf GNU_LIBC_VERSION OUTPUT_VARIABLE libc OUTPUT_STRIP_TRAILING_WHITESPACE)
string(REPLACE "glibc " "" libc "${libc}")
string(REGEX MATCH "^[0-9]+" compiler ${CMAKE_CXX_COMPILER_VERSION})

set(about "The memories of a server's parts hold their inventory (maker, part and
serial numbers, asset tag), laid out by the IPMI FRU Information Storage
Definition.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${soname_package})
# CPack has no name for this field, but writes a value as it is.
set(same_for_all "\nMulti-Arch: same")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION "libs${same_for_all}")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "libc6 (>= ${libc})")
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "FRU inventory of a server - library
${about}
This library reads, edits, saves and writes it back.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libfrudata-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION "libdevel${same_for_all}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${soname_package} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "FRU inventory of a server - development files
${about}
Headers, pkg-config file and CMake package.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME fructl)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS
  "${soname_package} (= ${PROJECT_VERSION}), libc6 (>= ${libc}), libstdc++6 (>= ${compiler}), libgcc-s1 (>= ${compiler})")
set(CPACK_COMPONENT_TOOL_DESCRIPTION "show, edit and write the FRU inventory of a server
${about}
fructl works on FRU text files, binary images and devices; makesimserver makes
a simulated server to try it on.")
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS "frudata-doc, frudata-lan")

# One for both word sizes, whose builds make the same one.
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME frudata-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION "doc\nMulti-Arch: foreign")
set(CPACK_COMPONENT_DOCUMENTATION_DESCRIPTION "FRU inventory of a server - documents and examples
${about}
The documents tell how its tools, its library and its file formats are used;
the examples are hosts to copy from, and playbooks for many servers.")

# Its licence is another: it is linked with libfreeipmi.
set(CPACK_DEBIAN_LAN_PACKAGE_NAME frudata-lan)
set(CPACK_DEBIAN_LAN_PACKAGE_SECTION "admin${same_for_all}")
set(CPACK_DEBIAN_LAN_PACKAGE_DEPENDS
  "libfreeipmi17, libc6 (>= ${libc}), libstdc++6 (>= ${compiler}), libgcc-s1 (>= ${compiler})")
set(CPACK_DEBIAN_LAN_PACKAGE_ENHANCES fructl)
set(CPACK_COMPONENT_LAN_DESCRIPTION "FRU inventory of a server - IPMI over LAN
${about}
With this module its tools reach them over the network. As a whole it is under
the GPL, version 3 or later.")

set(package_library ${soname_package})
set(package_development libfrudata-dev)
set(package_tool fructl)
set(package_documentation frudata-doc)
set(package_lan frudata-lan)
file(STRINGS CHANGELOG.md PACKAGE_DATE REGEX "^## \\[${PROJECT_VERSION}\\] - ")
string(REGEX REPLACE ".* - " "" PACKAGE_DATE "${PACKAGE_DATE}")
execute_process(COMMAND date --rfc-email --utc --date ${PACKAGE_DATE}
  OUTPUT_VARIABLE PACKAGE_DATE OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(documents ${CMAKE_BINARY_DIR}/packaging)
# CPack would write maintainer scripts in the place of the trigger.
set(shlibs "${PROJECT_VERSION_MAJOR} ${soname_package} (>= ${PROJECT_VERSION})\n")
file(WRITE ${documents}/shlibs "libfrudata ${shlibs}libfrudata-openipmi ${shlibs}")
file(WRITE ${documents}/triggers "activate-noawait ldconfig\n")
file(CHMOD ${documents}/shlibs ${documents}/triggers
  PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA "${documents}/shlibs;${documents}/triggers")
configure_file(packaging/changelog.in ${documents}/changelog @ONLY)
execute_process(COMMAND gzip -9nkf ${documents}/changelog COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  install(FILES packaging/copyright ${documents}/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package_${component}} COMPONENT ${component})
endforeach()

include(CPack)
