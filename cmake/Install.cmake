# Installs three components: `runtime` (the shared library or DLL), `development` (the headers, the static
# library, and the files by which CMake and pkg-config find them) and `daybook`. The installed tree
# can be moved: no file in it contains its path.
include(CMakePackageConfigHelpers)

install(TARGETS orzcore orzcore_static EXPORT orzcoreTargets
  RUNTIME COMPONENT runtime
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/orzcore TYPE INCLUDE COMPONENT development)

# The library depends on no other, so the file of its targets can serve as the package file.
set(cmake_directory ${CMAKE_INSTALL_LIBDIR}/cmake/orzcore)
install(EXPORT orzcoreTargets FILE orzcoreConfig.cmake NAMESPACE orzcore::
  DESTINATION ${cmake_directory} COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orzcoreConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orzcoreConfigVersion.cmake
  DESTINATION ${cmake_directory} COMPONENT development)

cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
  BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE up_to_prefix)
configure_file(${CMAKE_CURRENT_LIST_DIR}/orzcore.pc.in ${PROJECT_BINARY_DIR}/orzcore.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orzcore.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(TARGET daybook)
  file(RELATIVE_PATH up_to_libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(daybook PROPERTIES INSTALL_RPATH $ORIGIN/${up_to_libraries})
  install(TARGETS daybook RUNTIME COMPONENT daybook)
  install(FILES ${PROJECT_SOURCE_DIR}/examples/daybook/daybook.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT daybook)
endif()
