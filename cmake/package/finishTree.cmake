# Run by cpack when the tree of a package is installed and not yet packed.
if(NOT CPACK_QUENLITH_PYTHON)
  message(FATAL_ERROR "cpack needs Python 3: install it, then run cmake again")
endif()
set(root "${CPACK_TEMPORARY_DIRECTORY}")
if(CPACK_GENERATOR STREQUAL "DEB")
  string(APPEND root "/usr")
endif()
execute_process(COMMAND "${CPACK_QUENLITH_PYTHON}" "${CMAKE_CURRENT_LIST_DIR}/finish_tree.py"
    --kind "${CPACK_GENERATOR}" --version "${CPACK_PACKAGE_VERSION}"
    --maintainer "${CPACK_PACKAGE_CONTACT}" --compiler "${CPACK_QUENLITH_COMPILER}"
    --source "${CPACK_QUENLITH_SOURCE}" --build "${CPACK_QUENLITH_BUILD}" "${root}"
  COMMAND_ERROR_IS_FATAL ANY)
