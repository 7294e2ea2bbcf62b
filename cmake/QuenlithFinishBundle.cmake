# Run after the link of a bundle: checks the library against its manifest, then embeds the manifest.
#
# In: LIBRARY, MANIFEST, SYMBOLIC_NAME, EXPORTS (functions that the manifest calls for), WORK (a folder
# of this bundle and configuration), NM, STRIP (empty: keep the symbols), ZIP. A library that fails is removed, so
# that the next build links and checks it again.

cmake_minimum_required(VERSION 3.25)

function(fail)
  file(REMOVE "${LIBRARY}")
  # Not through a list: the text has semicolons.
  set(text)
  math(EXPR last "${ARGC} - 1")
  foreach(index RANGE ${last})
    string(APPEND text "${ARGV${index}}")
  endforeach()
  message(FATAL_ERROR "${LIBRARY}: ${text}")
endfunction()

function(run)
  execute_process(COMMAND ${ARGV} WORKING_DIRECTORY "${WORK}" RESULT_VARIABLE result
    OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    list(JOIN ARGV " " command)
    fail("${command}: ${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# What the C linkage functions of both sides are about, as the reader of the message knows it.
function(describe_missing symbol defined)
  if(symbol MATCHES "^_us_set_bundle_context_instance_")
    set(other "${defined}")
    list(FILTER other INCLUDE REGEX "^_us_set_bundle_context_instance_")
    list(TRANSFORM other REPLACE "^_us_set_bundle_context_instance_" "")
    fail("US_BUNDLE_NAME is '${other}', but \"bundle.symbolic_name\" in ${MANIFEST} is '${SYMBOLIC_NAME}'; "
      "leave US_BUNDLE_NAME to quenlith_add_bundle")
  elseif(symbol MATCHES "^_us_")
    fail("${MANIFEST} has \"bundle.activator\": true, but ${symbol} is not defined; add "
      "CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(Class) to a source, or set \"bundle.activator\" to false")
  else()
    string(REGEX REPLACE "^(New|Delete)Instance_" "" class "${symbol}")
    list(FILTER defined INCLUDE REGEX "^NewInstance_")
    list(TRANSFORM defined REPLACE "^NewInstance_" "")
    list(JOIN defined ", " others)
    if(others)
      set(others " (defined are the functions of ${others})")
    endif()
    fail("${MANIFEST} has a component with the name or class ${class} (\"::\" as \"_\"), but ${symbol} is not defined"
      "${others}; correct the name, or add QUENLITH_COMPONENT(${class}, Class, Provides<Interface>) to a file in "
      "SOURCES")
  endif()
endfunction()

# Local symbols count: the version script hides a function that the manifest does not call for. A name that goes on, as
# f.cold, is a part of a function.
function(check_functions)
  run("${NM}" --defined-only "${LIBRARY}")
  if(NOT output MATCHES "(^|\n)[0-9A-Fa-f]+ [A-Za-z] ")
    fail("the library has no symbol table; remove -s from the link options, a Release build is stripped after this "
      "check")
  endif()
  string(REGEX MATCHALL " [A-Za-z] (_us_set_bundle_context_instance_|_us_create_|_us_destroy_|NewInstance_|DeleteInstance_)[A-Za-z0-9_]*\n"
    defined "${output}\n")
  list(TRANSFORM defined REPLACE "^ [A-Za-z] |\n$" "")
  foreach(symbol IN LISTS EXPORTS)
    if(NOT symbol IN_LIST defined)
      describe_missing("${symbol}" "${defined}")
    endif()
  endforeach()
  foreach(symbol IN LISTS defined)
    if(NOT symbol IN_LIST EXPORTS)
      fail("${symbol} is defined, but ${MANIFEST} has no entry that calls for it; "
        "add the component (or \"bundle.activator\": true) to the manifest, or remove the function")
    endif()
  endforeach()
endfunction()

# Compares the interfaces that the manifest lists with those that QUENLITH_COMPONENT provides, whose names are
# in the symbols of the component's instance.
function(check_interfaces)
  file(READ "${MANIFEST}" manifest)
  string(JSON count ERROR_VARIABLE error LENGTH "${manifest}" scr components)
  if(error OR count EQUAL 0)
    return()
  endif()
  run("${NM}" --demangle --defined-only "${LIBRARY}")
  # The manifest names a class in an unnamed namespace like any other.
  string(REPLACE "(anonymous namespace)::" "" symbols "${output}")
  math(EXPR last "${count} - 1")
  foreach(index RANGE ${last})
    string(JSON class GET "${manifest}" scr components ${index} "implementation-class")
    check_class("${class}" "${symbols}")
    read_interfaces("${manifest}" ${index} listed)
    read_provided("${class}" "${listed}" "${symbols}" provided)
    if(provided)
      check_component("${class}" "${listed}" "${provided}")
    endif()
  endforeach()
endfunction()

# A library whose factories are all written by hand may have no instance that names its class.
function(check_class class symbols)
  string(FIND "${symbols}" "ComponentInstanceImpl<${class}, " place)
  string(REGEX MATCHALL "ComponentInstanceImpl<[^<>,]*, " others "${symbols}")
  if(NOT place EQUAL -1 OR NOT others)
    return()
  endif()
  list(TRANSFORM others REPLACE "ComponentInstanceImpl<(.*), " "\\1")
  list(REMOVE_DUPLICATES others)
  list(SORT others)
  list(JOIN others ", " names)
  fail("${MANIFEST} has a component with the class ${class}, but the classes of the components in the library are "
    "${names}; correct \"implementation-class\", or the class in QUENLITH_COMPONENT")
endfunction()

# Sets the interfaces of an instance of `class`, none if there is no instance. Components of one class may provide
# different interfaces: an instance with as many as are listed is preferred.
function(read_provided class listed symbols providedVariable)
  string(REGEX MATCHALL "ComponentInstanceImpl<${class}, std::tuple<[^<>]*>" instances "${symbols}")
  list(LENGTH listed listedCount)
  set(provided)
  foreach(instance IN LISTS instances)
    string(REGEX REPLACE ".*std::tuple<(.*)>" "\\1" provided "${instance}")
    string(REPLACE ", " ";" provided "${provided}")
    list(LENGTH provided count)
    if(count EQUAL listedCount)
      break()
    endif()
  endforeach()
  set(${providedVariable} "${provided}" PARENT_SCOPE)
endfunction()

function(read_interfaces manifest index listedVariable)
  set(listed)
  string(JSON count ERROR_VARIABLE error LENGTH "${manifest}" scr components ${index} service interfaces)
  if(NOT error AND count GREATER 0)
    math(EXPR last "${count} - 1")
    foreach(place RANGE ${last})
      string(JSON interface GET "${manifest}" scr components ${index} service interfaces ${place})
      list(APPEND listed "${interface}")
    endforeach()
  endif()
  set(${listedVariable} "${listed}" PARENT_SCOPE)
endfunction()

# An interface may be declared with another identifier than its name: a text of the library, which is seen
# if it has 16 bytes or more.
function(check_component class listed provided)
  list(JOIN provided ", " names)
  list(LENGTH provided providedCount)
  list(LENGTH listed listedCount)
  set(unknown "${listed}")
  list(REMOVE_ITEM unknown ${provided})
  foreach(interface IN LISTS unknown)
    string(LENGTH "${interface}" length)
    file(STRINGS "${LIBRARY}" found LIMIT_COUNT 1 REGEX "${interface}")
    if(listedCount GREATER providedCount OR (length GREATER 15 AND NOT found))
      fail("${MANIFEST} lists the interface ${interface} for the class ${class}, which provides ${names}; "
        "correct \"interfaces\", or derive the class from ${interface} and add it to Provides<...> in "
        "QUENLITH_COMPONENT")
    endif()
  endforeach()
  check_listed("${class}" "${listed}" "${provided}")
endfunction()

# The runtime registers a service only under the interfaces that are listed. A component that lists none provides no
# service.
function(check_listed class listed provided)
  list(JOIN provided ", " names)
  list(LENGTH provided providedCount)
  list(LENGTH listed listedCount)
  if(NOT listed OR NOT providedCount GREATER listedCount)
    return()
  endif()
  list(REMOVE_ITEM provided ${listed})
  list(GET provided 0 interface)
  fail("${MANIFEST} does not list the interface ${interface} for the class ${class}, which provides ${names}; "
    "add it to \"interfaces\", or remove it from Provides<...> in QUENLITH_COMPONENT")
endfunction()

function(append_archive)
  file(REMOVE_RECURSE "${WORK}/archive")
  set(folder "${WORK}/archive/${SYMBOLIC_NAME}")
  configure_file("${MANIFEST}" "${folder}/manifest.json" COPYONLY)
  # The archive contains modes and the local time, which must not depend on who builds, where and when.
  file(CHMOD "${folder}/manifest.json" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  file(CHMOD "${folder}" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
    WORLD_EXECUTE)
  set(ENV{TZ} UTC)
  run(touch -t 198001010000.00 "${folder}/manifest.json" "${folder}")
  set(archive "${WORK}/resources.zip")
  file(REMOVE "${archive}")
  # -X: without owners and with one time of each file. "cmake -E tar" would add when it was read.
  run("${CMAKE_COMMAND}" -E chdir archive "${ZIP}" -q -X -r "${archive}" "${SYMBOLIC_NAME}")
  # Beside the library: a file is not renamed from one file system to another.
  set(whole "${LIBRARY}.whole")
  execute_process(COMMAND "${CMAKE_COMMAND}" -E cat "${LIBRARY}" "${archive}" OUTPUT_FILE "${whole}"
    COMMAND_ERROR_IS_FATAL ANY)
  # Offsets that count from the start of the file: libraries that read zip archives want them.
  run("${ZIP}" -q -A "${whole}")
  file(CHMOD "${whole}" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
    WORLD_EXECUTE)
  file(RENAME "${whole}" "${LIBRARY}")
endfunction()

file(MAKE_DIRECTORY "${WORK}")
check_functions()
check_interfaces()
if(STRIP)
  run("${STRIP}" "${LIBRARY}")
endif()
append_archive()
