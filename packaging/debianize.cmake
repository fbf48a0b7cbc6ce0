# Run by CPack on what it has installed to pack: adds the copyright and the changelog to each
# package, and compresses the manual page.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} key)
  set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}/usr)
  set(documents ${root}/share/doc/${CPACK_DEBIAN_${key}_PACKAGE_NAME})
  configure_file(${CPACK_ORZCORE_PACKAGING}/copyright ${documents}/copyright COPYONLY)
  configure_file(${CPACK_ORZCORE_PACKAGING}/changelog ${documents}/changelog COPYONLY)
  file(GLOB_RECURSE pages ${root}/share/man/*.1)
  file(CHMOD ${documents}/copyright ${documents}/changelog ${pages}
    PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  execute_process(COMMAND gzip -9n ${documents}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
