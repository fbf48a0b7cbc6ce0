# Makes the Debian packages, one for each component of the installation; for Windows, one archive.
set(CPACK_PACKAGE_CONTACT "orzcore authors <orzcore@example.org>" CACHE STRING
  "Who maintains the packages")
set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET daybook)
  list(APPEND CPACK_COMPONENTS_ALL daybook)
endif()
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each component has its own
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME liborzcore${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "calendar, fields and shared files (library)
Turns what people type into dates, times, amounts and priorities, moves dates
and finds recurring ones, shares files between users by byte-range locks, and
turns errors into messages that a user can act on.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liborzcore-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "calendar, fields and shared files (development files)
The headers, which are the manual, the static library, and the files by which
CMake and pkg-config find them. Needs a compiler for C++20.")

set(CPACK_DEBIAN_DAYBOOK_PACKAGE_NAME daybook)
set(CPACK_DEBIAN_DAYBOOK_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_DAYBOOK_DEPENDS runtime)
set(CPACK_COMPONENT_DAYBOOK_DESCRIPTION "organizer in the terminal, with files that users share
Keeps dated entries in files that several users have open at the same time,
lists recurring dates, and shows what dates, times and amounts a text means.")

# Changes the files as Debian wants them; packaging/debianize.cmake says how.
if(NOT WIN32)
  set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debianize.cmake)
endif()
set(CPACK_ORZCORE_PACKAGING ${PROJECT_SOURCE_DIR}/packaging)
include(CPack)
