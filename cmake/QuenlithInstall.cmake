# What `cmake --install` puts where: the libraries with their headers under include/quenlith, the
# package for find_package(Quenlith), the function for bundles, and a pkg-config file. Programs and
# bundles are installed by the folders that define them. All paths are relative, so that the installed
# tree can be moved.
include(CMakePackageConfigHelpers)

set(QUENLITH_PACKAGE_FOLDER "${CMAKE_INSTALL_LIBDIR}/cmake/Quenlith")
set(QUENLITH_HEADER_FOLDER "${CMAKE_INSTALL_INCLUDEDIR}/quenlith")

# Installs a library as Quenlith::NAME.
function(quenlith_install_library target name)
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
  set_property(GLOBAL APPEND PROPERTY QUENLITH_COMPONENTS ${name})
  get_target_property(type ${target} TYPE)
  set(generated)
  if(type STREQUAL "SHARED_LIBRARY")
    set_target_properties(${target} PROPERTIES
      VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
    set(generated FILE_SET generated DESTINATION "${QUENLITH_HEADER_FOLDER}")
    set_property(GLOBAL APPEND PROPERTY QUENLITH_LINKED ${name})
  endif()
  install(TARGETS ${target} EXPORT QuenlithTargets
    FILE_SET HEADERS DESTINATION "${QUENLITH_HEADER_FOLDER}"
    ${generated})
endfunction()

# Installs the package; called after every library is defined.
function(quenlith_install_package)
  if(QUENLITH_FRAMEWORK STREQUAL "system")
    set_target_properties(quenlith_cppmicroservices PROPERTIES EXPORT_NAME cppmicroservices)
    set_property(GLOBAL APPEND PROPERTY QUENLITH_COMPONENTS cppmicroservices)
    install(TARGETS quenlith_cppmicroservices EXPORT QuenlithTargets)
  endif()
  install(EXPORT QuenlithTargets NAMESPACE Quenlith:: DESTINATION "${QUENLITH_PACKAGE_FOLDER}")
  set(work "${CMAKE_CURRENT_BINARY_DIR}/package")
  get_property(QUENLITH_COMPONENTS GLOBAL PROPERTY QUENLITH_COMPONENTS)
  quenlith_name_bundles()
  configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/QuenlithConfig.cmake.in"
    "${work}/configured/QuenlithConfig.cmake" INSTALL_DESTINATION "${QUENLITH_PACKAGE_FOLDER}"
    PATH_VARS CMAKE_INSTALL_BINDIR CMAKE_INSTALL_LIBDIR NO_SET_AND_CHECK_MACRO)
  file(GENERATE OUTPUT "${work}/QuenlithConfig.cmake" INPUT "${work}/configured/QuenlithConfig.cmake")
  write_basic_package_version_file("${work}/QuenlithConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
  install(FILES "${work}/QuenlithConfig.cmake" "${work}/QuenlithConfigVersion.cmake"
    "${PROJECT_SOURCE_DIR}/cmake/QuenlithBundle.cmake"
    "${PROJECT_SOURCE_DIR}/cmake/QuenlithFinishBundle.cmake"
    DESTINATION "${QUENLITH_PACKAGE_FOLDER}")
  quenlith_install_pkgconfig("${work}/quenlith.pc")
endfunction()

# Sets the file names of the installed bundles, as generator expressions.
macro(quenlith_name_bundles)
  set(QUENLITH_PARSER_BUNDLE "$<TARGET_FILE_NAME:quenlith_markup_code>")
  set(QUENLITH_PIECE_BUNDLE "$<TARGET_FILE_NAME:tessera_pieces>")
  set(QUENLITH_RUNTIME_BUNDLE "$<PATH:GET_FILENAME,${QUENLITH_SCR_BUNDLE}>")
endmacro()

function(quenlith_install_pkgconfig file)
  get_property(names GLOBAL PROPERTY QUENLITH_LINKED)
  list(TRANSFORM names PREPEND "-lquenlith_")
  list(JOIN names " " QUENLITH_LINKED)
  # From the folder of the file to the prefix: the library folder may have several levels.
  file(RELATIVE_PATH QUENLITH_UPWARDS "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  string(REGEX REPLACE "/$" "" QUENLITH_UPWARDS "${QUENLITH_UPWARDS}")
  set(QUENLITH_FRAMEWORK_FLAGS)
  if(QUENLITH_FRAMEWORK STREQUAL "embedded")
    string(PREPEND QUENLITH_RUNTIME_BUNDLE "\${libdir}/")
  else()
    set(QUENLITH_RUNTIME_BUNDLE "${QUENLITH_SCR_BUNDLE}")
    set(folders "$<REMOVE_DUPLICATES:$<TARGET_PROPERTY:quenlith_cppmicroservices,INTERFACE_INCLUDE_DIRECTORIES>>")
    set(QUENLITH_FRAMEWORK_FLAGS "-I$<JOIN:${folders}, -I>")
    string(APPEND QUENLITH_LINKED " $<TARGET_FILE:CppMicroServices> $<TARGET_FILE:usServiceComponent>")
  endif()
  configure_file("${PROJECT_SOURCE_DIR}/cmake/quenlith.pc.in" "${file}.configured" @ONLY)
  file(GENERATE OUTPUT "${file}" INPUT "${file}.configured")
  install(FILES "${file}" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endfunction()

# Sets `result` to the installed headers, by the names under which they are included.
function(quenlith_public_header_files result)
  get_property(names GLOBAL PROPERTY QUENLITH_COMPONENTS)
  if(QUENLITH_FRAMEWORK STREQUAL "system")
    # The installed framework installs its own headers.
    list(REMOVE_ITEM names cppmicroservices)
  endif()
  set(found)
  foreach(name IN LISTS names)
    get_target_property(headers quenlith_${name} HEADER_SET)
    get_target_property(roots quenlith_${name} HEADER_DIRS)
    foreach(header IN LISTS headers)
      foreach(root IN LISTS roots)
        cmake_path(IS_PREFIX root "${header}" inside)
        if(inside)
          file(RELATIVE_PATH header "${root}" "${header}")
          break()
        endif()
      endforeach()
      list(APPEND found "${header}")
    endforeach()
  endforeach()
  set(${result} "${found}" PARENT_SCOPE)
endfunction()
