# The project's version is the source of all others. A header cannot be generated where it is used in place, so its
# version is checked.
file(STRINGS include/frudata/frudata.h header REGEX "^#define FRUDATA_(VERSION|INTERFACE_REVISION) ")
math(EXPR revision "${PROJECT_VERSION_MAJOR} << 16" OUTPUT_FORMAT HEXADECIMAL)
string(REPLACE 0x 0x000 revision ${revision})
if(NOT header STREQUAL
   "#define FRUDATA_VERSION \"${PROJECT_VERSION}\";#define FRUDATA_INTERFACE_REVISION ${revision}U")
  message(FATAL_ERROR "include/frudata/frudata.h is not of version ${PROJECT_VERSION}, revision ${revision}: ${header}")
endif()
file(STRINGS CHANGELOG.md changes REGEX "^## \\[${PROJECT_VERSION}\\]")
if(NOT changes)
  message(FATAL_ERROR "CHANGELOG.md does not tell of version ${PROJECT_VERSION}")
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS include/frudata/frudata.h CHANGELOG.md)
