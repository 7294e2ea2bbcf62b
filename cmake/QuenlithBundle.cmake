# quenlith_add_bundle(NAME MANIFEST file SOURCES source... [LINK target...] [OUTPUT_NAME name])
#
# Makes the target NAME, a bundle for the framework: a loadable library with the manifest in its
# resources. The manifest decides: its "bundle.symbolic_name" becomes the define US_BUNDLE_NAME and the
# initialization code, its components become the list of exported functions; nothing else is exported.
# After each link, a check fails unless the library defines exactly the functions that the manifest needs, and
# the class of each component provides the interfaces that the manifest lists for it, and no more. Unknown keys of
# "scr" stop the configure step.
# Each component takes one line in a file of SOURCES, see quenlith/bundle/component.hpp.
#
# Install a bundle with quenlith_install_bundle: install(TARGETS) may strip it, and stripping removes the
# manifest.
#
# quenlith_install_bundle(NAME [DESTINATION folder])
#
# Installs the library of a bundle as it is; `folder` is CMAKE_INSTALL_LIBDIR unless given.
include_guard(GLOBAL)
set(QUENLITH_BUNDLE_SCRIPT "${CMAKE_CURRENT_LIST_DIR}/QuenlithFinishBundle.cmake" CACHE INTERNAL "")

function(quenlith_add_bundle name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "MANIFEST;OUTPUT_NAME" "SOURCES;LINK")
  if(NOT arg_MANIFEST OR NOT arg_SOURCES OR arg_UNPARSED_ARGUMENTS
      OR "OUTPUT_NAME" IN_LIST arg_KEYWORDS_MISSING_VALUES)
    message(FATAL_ERROR "quenlith_add_bundle(${name}): use NAME MANIFEST file SOURCES source... "
      "[LINK target...] [OUTPUT_NAME name]")
  endif()
  get_filename_component(manifest "${arg_MANIFEST}" ABSOLUTE)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${manifest}")
  quenlith_read_manifest("${manifest}" symbolicName exports)

  set(work "${CMAKE_CURRENT_BINARY_DIR}/${name}.bundle")
  set(initialization "${work}/initialization.cpp")
  file(CONFIGURE OUTPUT "${initialization}" CONTENT
"#include <cppmicroservices/BundleInitialization.h>

CPPMICROSERVICES_INITIALIZE_BUNDLE
")
  add_library(${name} MODULE ${arg_SOURCES} "${initialization}")
  set_target_properties(${name} PROPERTIES
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    BUILD_WITH_INSTALL_RPATH ON
    INSTALL_RPATH "$ORIGIN"
    INSTALL_RPATH_USE_LINK_PATH ON
    LINK_DEPENDS "${manifest};${QUENLITH_BUNDLE_SCRIPT}")
  if(arg_OUTPUT_NAME)
    set_target_properties(${name} PROPERTIES PREFIX "" OUTPUT_NAME "${arg_OUTPUT_NAME}")
  endif()
  target_compile_definitions(${name} PRIVATE US_BUNDLE_NAME=${symbolicName})
  if(TARGET platform::bundle)
    target_link_libraries(${name} PRIVATE platform::bundle quenlith_warnings)
  else()
    target_link_libraries(${name} PRIVATE Quenlith::bundle)
  endif()
  target_link_libraries(${name} PRIVATE ${arg_LINK})

  if(WIN32)
    quenlith_add_resource_script(${name} "${manifest}" ${symbolicName} "${work}")
  else()
    quenlith_append_manifest(${name} "${manifest}" ${symbolicName} "${work}" "${exports}")
  endif()
endfunction()

function(quenlith_install_bundle name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "DESTINATION" "")
  if(arg_UNPARSED_ARGUMENTS OR arg_KEYWORDS_MISSING_VALUES)
    message(FATAL_ERROR "quenlith_install_bundle(${name}): use NAME [DESTINATION folder]")
  endif()
  if(NOT arg_DESTINATION)
    include(GNUInstallDirs)
    set(arg_DESTINATION "${CMAKE_INSTALL_LIBDIR}")
  endif()
  install(PROGRAMS "$<TARGET_FILE:${name}>" DESTINATION "${arg_DESTINATION}")
endfunction()

# Sets the symbolic name and the list of functions that a bundle of this manifest exports.
function(quenlith_read_manifest manifest symbolicNameVariable exportsVariable)
  if(NOT EXISTS "${manifest}")
    message(FATAL_ERROR "${manifest}: no such file; MANIFEST names the manifest.json of the bundle")
  endif()
  file(READ "${manifest}" text)
  string(JSON symbolicName ERROR_VARIABLE error GET "${text}" "bundle.symbolic_name")
  if(error)
    message(FATAL_ERROR "${manifest}: ${error}; a manifest is a JSON object with \"bundle.symbolic_name\"")
  elseif(NOT symbolicName MATCHES "^[A-Za-z_][A-Za-z0-9_]*$")
    message(FATAL_ERROR "${manifest}: \"bundle.symbolic_name\" is \"${symbolicName}\"; "
      "use letters, digits and underscores, a digit not first")
  endif()
  set(exports "_us_set_bundle_context_instance_${symbolicName}")
  string(JSON activator ERROR_VARIABLE error GET "${text}" "bundle.activator")
  if(NOT error AND activator)
    list(APPEND exports "_us_create_activator_${symbolicName}" "_us_destroy_activator_${symbolicName}")
  endif()
  quenlith_read_components("${manifest}" "${text}" factories)
  set(${symbolicNameVariable} "${symbolicName}" PARENT_SCOPE)
  set(${exportsVariable} ${exports} ${factories} PARENT_SCOPE)
endfunction()

# Sets the list of factory functions that the components of a manifest need. They are named after the
# component, which is named after its class unless it has a "name".
function(quenlith_read_components manifest text factoriesVariable)
  set(factories)
  string(JSON record ERROR_VARIABLE error GET "${text}" scr)
  if(NOT error)
    quenlith_allow_keys("${manifest}" "${text}" "scr" "version;components")
  endif()
  string(JSON count ERROR_VARIABLE error LENGTH "${text}" scr components)
  if(NOT error AND count GREATER 0)
    math(EXPR last "${count} - 1")
    foreach(index RANGE ${last})
      string(JSON class ERROR_VARIABLE error GET "${text}" scr components ${index} "implementation-class")
      if(error)
        message(FATAL_ERROR "${manifest}: component ${index} of \"scr\" has no \"implementation-class\"")
      endif()
      quenlith_check_component_keys("${manifest}" "${text}" ${index})
      string(JSON component ERROR_VARIABLE error GET "${text}" scr components ${index} name)
      if(error)
        set(component "${class}")
      endif()
      string(REPLACE "::" "_" symbol "${component}")
      if(NOT symbol MATCHES "^[A-Za-z_][A-Za-z0-9_]*$")
        message(FATAL_ERROR "${manifest}: component ${index} of \"scr\" has the name or class \"${component}\": the "
          "functions of a component are named after it; use letters, digits, underscores and \"::\", a digit not first")
      endif()
      list(APPEND factories "NewInstance_${symbol}" "DeleteInstance_${symbol}")
    endforeach()
  endif()
  set(${factoriesVariable} "${factories}" PARENT_SCOPE)
endfunction()

# The keys that Declarative Services define.
function(quenlith_check_component_keys manifest text index)
  quenlith_allow_keys("${manifest}" "${text}" "scr;components;${index}"
    "implementation-class;name;service;properties;references;inject-references;enabled;immediate;\
configuration-policy;configuration-pid;factory;factory-properties")
  string(JSON type ERROR_VARIABLE error TYPE "${text}" scr components ${index} service)
  if(type STREQUAL "OBJECT")
    quenlith_allow_keys("${manifest}" "${text}" "scr;components;${index};service" "interfaces;scope")
  endif()
  string(JSON count ERROR_VARIABLE error LENGTH "${text}" scr components ${index} references)
  if(NOT error AND count GREATER 0)
    math(EXPR last "${count} - 1")
    foreach(reference RANGE ${last})
      quenlith_allow_keys("${manifest}" "${text}" "scr;components;${index};references;${reference}"
        "name;interface;cardinality;policy;policy-option;scope;target")
    endforeach()
  endif()
endfunction()

# Stops unless each key of the object at `path`, a list of keys and indices, is one of `allowed`.
function(quenlith_allow_keys manifest text path allowed)
  list(JOIN path "." place)
  string(JSON count ERROR_VARIABLE error LENGTH "${text}" ${path})
  string(JSON type ERROR_VARIABLE error TYPE "${text}" ${path})
  if(NOT type STREQUAL "OBJECT")
    message(FATAL_ERROR "${manifest}: ${place} must be an object")
  elseif(count EQUAL 0)
    return()
  endif()
  math(EXPR last "${count} - 1")
  foreach(index RANGE ${last})
    string(JSON key MEMBER "${text}" ${path} ${index})
    if(NOT key IN_LIST allowed)
      list(JOIN allowed ", " known)
      message(FATAL_ERROR "${manifest}: ${place} has the key \"${key}\", which Declarative Services do not know; "
        "correct it, or use one of ${known}")
    endif()
  endforeach()
endfunction()

# On ELF the resources are a zip archive appended to the library; a version script hides all other symbols.
function(quenlith_append_manifest name manifest symbolicName work exports)
  find_program(QUENLITH_ZIP_PROGRAM zip REQUIRED DOC "Info-ZIP's zip, which sets the offsets of an appended archive")
  set(script "${work}/exports.map")
  list(JOIN exports ";\n    " lines)
  file(CONFIGURE OUTPUT "${script}" CONTENT "{\n  global:\n    ${lines};\n  local:\n    *;\n};\n")
  target_link_options(${name} PRIVATE "LINKER:--version-script=${script}")
  set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS "${script}")
  set(strip)
  if(CMAKE_STRIP)
    set(strip "$<$<CONFIG:Release,MinSizeRel>:${CMAKE_STRIP}>")
  endif()
  add_custom_command(TARGET ${name} POST_BUILD VERBATIM
    COMMENT "Checking ${name} against its manifest and embedding it"
    COMMAND "${CMAKE_COMMAND}" "-DLIBRARY=$<TARGET_FILE:${name}>" "-DMANIFEST=${manifest}"
      "-DSYMBOLIC_NAME=${symbolicName}" "-DEXPORTS=${exports}" "-DWORK=${work}/$<CONFIG>" "-DNM=${CMAKE_NM}"
      "-DSTRIP=${strip}" "-DZIP=${QUENLITH_ZIP_PROGRAM}" -P "${QUENLITH_BUNDLE_SCRIPT}")
endfunction()

# On Windows the archive is a resource of the library: type 300, name US_RESOURCES, language 1033.
function(quenlith_add_resource_script name manifest symbolicName work)
  configure_file("${manifest}" "${work}/archive/${symbolicName}/manifest.json" COPYONLY)
  set(archive "${work}/resources.zip")
  add_custom_command(OUTPUT "${archive}" VERBATIM
    COMMAND "${CMAKE_COMMAND}" -E tar cf "${archive}" --format=zip "${symbolicName}"
    WORKING_DIRECTORY "${work}/archive" DEPENDS "${manifest}")
  quenlith_write_resource_script("${work}/resources.rc" "${archive}")
  set_property(SOURCE "${work}/resources.rc" APPEND PROPERTY OBJECT_DEPENDS "${archive}")
  target_sources(${name} PRIVATE "${work}/resources.rc")
endfunction()

function(quenlith_write_resource_script script archive)
  # 9 and 1 are English and its variety of the United States, together language 1033 (0x0409).
  file(CONFIGURE OUTPUT "${script}" CONTENT "LANGUAGE 9, 1\nUS_RESOURCES 300 \"${archive}\"\n")
endfunction()
