# Run by cpack when a package is written. The entries of a .tar.gz are in the order of the folders on this
# disk, with this user's name: writes it again with sorted entries that belong to root.
if(NOT CPACK_GENERATOR STREQUAL "TGZ")
  return()
endif()
foreach(archive IN LISTS CPACK_PACKAGE_FILES)
  set(tree "${CPACK_TEMPORARY_DIRECTORY}")
  cmake_path(GET tree PARENT_PATH parent)
  cmake_path(GET tree FILENAME name)
  execute_process(
    COMMAND tar --create --directory "${parent}" --sort=name --format=gnu --owner=root:0 --group=root:0 "${name}"
    COMMAND gzip --no-name --best
    OUTPUT_FILE "${archive}"
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
