# Run by cpack when a package is written. Writes it again, so that its bytes do not depend on who packed it and
# where: the parts of a .deb have the modes that the caller's umask allows, and the entries of a .tar.gz are in
# the order of the folders on this disk and have this user's name.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  if(CPACK_GENERATOR STREQUAL "DEB")
    set(parts "${CPACK_TEMPORARY_DIRECTORY}/../parts")
    file(REMOVE_RECURSE "${parts}")
    file(MAKE_DIRECTORY "${parts}")
    execute_process(COMMAND ar x "${package}" WORKING_DIRECTORY "${parts}" COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND ar rcDS new.deb debian-binary control.tar.gz data.tar.gz
      WORKING_DIRECTORY "${parts}" COMMAND_ERROR_IS_FATAL ANY)
    file(RENAME "${parts}/new.deb" "${package}")
  elseif(CPACK_GENERATOR STREQUAL "TGZ")
    cmake_path(GET CPACK_TEMPORARY_DIRECTORY PARENT_PATH parent)
    cmake_path(GET CPACK_TEMPORARY_DIRECTORY FILENAME name)
    execute_process(
      COMMAND tar --create --directory "${parent}" --sort=name --format=gnu --owner=root:0 --group=root:0 "${name}"
      COMMAND gzip --no-name --best
      OUTPUT_FILE "${package}"
      COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
