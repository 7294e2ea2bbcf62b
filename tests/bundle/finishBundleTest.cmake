# Runs the post-link step of a bundle on libraries that do not match their manifest, and checks its
# messages. Input: SCRIPT, BASE (the library), NM, STRIP, ZIP, WORK (a folder to write to).
cmake_minimum_required(VERSION 3.25)

set(all _us_set_bundle_context_instance_broken)
foreach(class IN ITEMS Both Fine Half Needs Null Thrower ThrowsError ThrowsNumber)
  list(APPEND all NewInstance_demo_${class} DeleteInstance_demo_${class})
endforeach()
set(complete ${all})
list(REMOVE_ITEM complete DeleteInstance_demo_Half)
file(MAKE_DIRECTORY "${WORK}")
file(WRITE "${WORK}/manifest.json" "{}")
file(WRITE "${WORK}/MANIFEST" "{}")
set(library "${WORK}/bundle.so")

set(base "${BASE}")

# Runs the step for a library that should export `exports` and expects `expected` in its message.
function(expect_message name symbolicName exports expected)
  file(COPY_FILE "${base}" "${library}")
  execute_process(COMMAND "${CMAKE_COMMAND}" "-DLIBRARY=${library}" "-DMANIFEST=MANIFEST"
      "-DSYMBOLIC_NAME=${symbolicName}" "-DEXPORTS=${exports}" "-DWORK=${WORK}" "-DNM=${NM}"
      -DSTRIP= "-DZIP=${ZIP}" -P "${SCRIPT}"
    RESULT_VARIABLE result ERROR_VARIABLE said)
  string(REGEX REPLACE "[ \n]+" " " said "${said}")
  string(FIND "${said}" "${expected}" place)
  if(result EQUAL 0 OR place EQUAL -1 OR EXISTS "${library}")
    message(SEND_ERROR "${name}: expected a failure with \"${expected}\", got ${result}: ${said}")
  endif()
endfunction()

expect_message(MissingFactory broken "${all}" "MANIFEST has a component with the name or class demo_Half (\"::\" as \"_\"), but DeleteInstance_demo_Half is not defined (defined are the functions of demo_Both, demo_Fine, demo_Half, demo_Needs, demo_Null, demo_Thrower, demo_ThrowsError, demo_ThrowsNumber); correct the name, or add QUENLITH_COMPONENT(demo_Half, Class, Provides<Interface>) to a file in SOURCES")
expect_message(OtherName other "_us_set_bundle_context_instance_other" "US_BUNDLE_NAME is 'broken', but \"bundle.symbolic_name\" in MANIFEST is 'other'; leave US_BUNDLE_NAME to quenlith_add_bundle")
expect_message(MissingActivator broken "${complete};_us_create_activator_broken" "MANIFEST has \"bundle.activator\": true, but _us_create_activator_broken is not defined; add CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(Class) to a source, or set \"bundle.activator\" to false")
set(fewer ${complete})
list(REMOVE_ITEM fewer NewInstance_demo_Fine)
expect_message(FactoryTooMany broken "${fewer}" "NewInstance_demo_Fine is defined, but MANIFEST has no entry that calls for it; add the component (or \"bundle.activator\": true) to the manifest, or remove the function")

set(base "${WORK}/stripped.so")
file(COPY_FILE "${BASE}" "${base}")
execute_process(COMMAND "${STRIP}" "${base}" COMMAND_ERROR_IS_FATAL ANY)
expect_message(Stripped broken "${complete}" "the library has no symbol table; remove -s from the link options, a Release build is stripped after this check")
set(base "${BASE}")

# Runs the step with a manifest in which the class `class` provides `interfaces`, a JSON list.
function(expect_component name class interfaces expected)
  set(manifest "${WORK}/${name}.json")
  file(WRITE "${manifest}" "{\"scr\":{\"version\":1,\"components\":[{\"implementation-class\":\"${class}\",\
\"service\":{\"interfaces\":${interfaces}}}]}}")
  file(COPY_FILE "${BASE}" "${library}")
  execute_process(COMMAND "${CMAKE_COMMAND}" "-DLIBRARY=${library}" "-DMANIFEST=${manifest}"
      -DSYMBOLIC_NAME=broken "-DEXPORTS=${complete}" "-DWORK=${WORK}" "-DNM=${NM}" -DSTRIP= "-DZIP=${ZIP}"
      -P "${SCRIPT}"
    RESULT_VARIABLE result ERROR_VARIABLE said)
  string(REGEX REPLACE "[ \n]+" " " said "${said}")
  if(expected)
    set(expected "${name}.json ${expected}")
    string(FIND "${said}" "${expected}" place)
    if(result EQUAL 0 OR place EQUAL -1 OR EXISTS "${library}")
      message(SEND_ERROR "${name}: expected a failure with \"${expected}\", got ${result}: ${said}")
    endif()
  elseif(NOT result EQUAL 0)
    message(SEND_ERROR "${name}: expected no failure, got ${result}: ${said}")
  endif()
endfunction()

# Like it, with a manifest that lists the interface `unknown`, which the class does not provide.
function(expect_unknown_interface name class interfaces unknown)
  expect_component(${name} ${class} "${interfaces}" "lists the interface ${unknown} for the class ${class}, which provides demo::Broken; correct \"interfaces\", or derive the class from ${unknown} and add it to Provides<...> in QUENLITH_COMPONENT")
endfunction()

expect_component(SameInterface demo::Fine [=[["demo::Broken"]]=] "")
expect_unknown_interface(MisspeltInterface demo::Fine [=[["demo::BrokenInterface"]]=] "demo::BrokenInterface")
expect_unknown_interface(OneInterfaceTooMany demo::Fine [=[["demo::Broken","demo::Number"]]=] "demo::Number")
expect_unknown_interface(UnnamedNamespace demo::ThrowsNumber [=[["demo::BrokenInterface"]]=] "demo::BrokenInterface")
# The identifier of an interface that is declared with another one than its name is a text of the library.
expect_component(OtherIdentifier demo::Fine [=[["NewInstance_demo_Fine"]]=] "")
expect_component(SameInterfaces demo::Both [=[["demo::NeedsBroken","demo::Broken"]]=] "")
expect_component(InterfaceNotListed demo::Both [=[["demo::Broken"]]=] "does not list the interface demo::NeedsBroken for the class demo::Both, which provides demo::Broken, demo::NeedsBroken; add it to \"interfaces\", or remove it from Provides<...> in QUENLITH_COMPONENT")
expect_component(OtherClass demo::Finer [=[["demo::Broken"]]=] "has a component with the class demo::Finer, but the classes of the components in the library are demo::Both, demo::Fine, demo::Needs, demo::ThrowsError, demo::ThrowsNumber; correct \"implementation-class\", or the class in QUENLITH_COMPONENT")

# A library that matches is kept, with the manifest appended to it, also if the folder of the build is on another file
# system. /dev/shm is one, where there is one.
function(expect_finished library)
  file(REMOVE_RECURSE "${WORK}/new")
  file(COPY_FILE "${BASE}" "${library}")
  execute_process(COMMAND "${CMAKE_COMMAND}" "-DLIBRARY=${library}" "-DMANIFEST=${WORK}/manifest.json"
      -DSYMBOLIC_NAME=broken "-DEXPORTS=${complete}" "-DWORK=${WORK}/new" "-DNM=${NM}" -DSTRIP= "-DZIP=${ZIP}"
      -P "${SCRIPT}"
    COMMAND_ERROR_IS_FATAL ANY)
  file(SIZE "${BASE}" before)
  file(SIZE "${library}" after)
  if(NOT after GREATER before)
    message(SEND_ERROR "the library that matches has no archive appended")
  endif()
  file(GLOB others "${library}?*")
  if(others)
    message(SEND_ERROR "left are ${others}")
  endif()
endfunction()

expect_finished("${library}")
if(EXISTS /dev/shm)
  string(MAKE_C_IDENTIFIER "${WORK}" folder)
  file(MAKE_DIRECTORY "/dev/shm/${folder}")
  expect_finished("/dev/shm/${folder}/bundle.so")
  file(REMOVE_RECURSE "/dev/shm/${folder}")
endif()
