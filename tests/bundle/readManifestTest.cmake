# Reads manifests with mistakes as quenlith_add_bundle does, and checks its messages. Input: SCRIPT, WORK (a
# folder to write to).
cmake_minimum_required(VERSION 3.25)

# Reads `manifest`; expects a failure with `expected` in its message, none if that is empty.
function(expect_message name manifest expected)
  set(file "${WORK}/${name}.json")
  file(WRITE "${file}" "${manifest}")
  file(WRITE "${WORK}/${name}.cmake" "cmake_minimum_required(VERSION 3.25)\ninclude(\"${SCRIPT}\")\nquenlith_read_manifest(\"${file}\" name exports)\n")
  execute_process(COMMAND "${CMAKE_COMMAND}" -P "${WORK}/${name}.cmake" RESULT_VARIABLE result ERROR_VARIABLE said)
  string(REGEX REPLACE "[ \n]+" " " said "${said}")
  string(FIND "${said}" "${name}.json: ${expected}" place)
  if(expected AND (result EQUAL 0 OR place EQUAL -1))
    message(SEND_ERROR "${name}: expected a failure with \"${expected}\", got ${result}: ${said}")
  elseif(NOT expected AND NOT result EQUAL 0)
    message(SEND_ERROR "${name}: expected no failure, got ${result}: ${said}")
  endif()
endfunction()

function(expect_component_message name members expected)
  expect_message(${name} "{\"bundle.symbolic_name\":\"demo\",\"scr\":{\"version\":1,\"components\":[\
{\"implementation-class\":\"demo::Fine\",${members}}]}}" "${expected}")
endfunction()

set(unknown "which Declarative Services do not know; correct it, or use one of")
expect_component_message(EveryKey [=["name":"a","service":{"interfaces":["A"],"scope":"singleton"},"properties":{"any":1},
  "inject-references":true,"references":[{"name":"b","interface":"B","cardinality":"1..1","policy":"static",
  "policy-option":"reluctant","scope":"bundle","target":"(a=b)"}],"enabled":true,"immediate":false,
  "configuration-policy":"ignore","configuration-pid":["a"],"factory":"f","factory-properties":{}]=] "")
expect_component_message(ComponentKey [=["refrences":[]]=] "scr.components.0 has the key \"refrences\", ${unknown} implementation-class, name, service, ")
expect_component_message(ServiceKey [=["service":{"interface":["A"]}]=] "scr.components.0.service has the key \"interface\", ${unknown} interfaces, scope")
expect_component_message(ReferenceKey [=["references":[{"name":"a","interfaces":"A"}]]=] "scr.components.0.references.0 has the key \"interfaces\", ${unknown} name, interface, ")
expect_component_message(ReferenceText [=["references":["A"]]=] "scr.components.0.references.0 must be an object")
expect_message(ScrKey [=[{"bundle.symbolic_name":"demo","scr":{"version":1,"component":[]}}]=] "scr has the key \"component\", ${unknown} version, components")
# Keys outside of "scr" are the bundle's.
expect_message(OtherKeys [=[{"bundle.symbolic_name":"demo","anything":{"version":1}}]=] "")

# The name of a component is a part of the names of two C functions.
set(function "the functions of a component are named after it; use letters, digits, underscores and \"::\", a digit not first")
foreach(name IN ITEMS "text-parser" "text.parser" "text parser" "2nd" "é" "Parser<int>" "")
  expect_component_message(ComponentName "\"name\":\"${name}\"" "component 0 of \"scr\" has the name or class \"${name}\": ${function}")
endforeach()
expect_component_message(NestedName [=["name":"a::B_2"]=] "")
expect_message(TemplateClass [=[{"bundle.symbolic_name":"demo","scr":{"version":1,"components":[
  {"implementation-class":"demo::Fine<int>"}]}}]=] "component 0 of \"scr\" has the name or class \"demo::Fine<int>\": ${function}")
expect_message(NamedTemplateClass [=[{"bundle.symbolic_name":"demo","scr":{"version":1,"components":[
  {"implementation-class":"demo::Fine<int>","name":"Fine"}]}}]=] "")

# Calls a function of the script; expects a failure with `expected` in its message.
function(expect_misuse name call expected)
  file(WRITE "${WORK}/${name}.cmake" "cmake_minimum_required(VERSION 3.25)\ninclude(\"${SCRIPT}\")\n${call}\n")
  execute_process(COMMAND "${CMAKE_COMMAND}" -P "${WORK}/${name}.cmake" RESULT_VARIABLE result ERROR_VARIABLE said)
  string(REGEX REPLACE "[ \n]+" " " said "${said}")
  string(FIND "${said}" "${expected}" place)
  if(result EQUAL 0 OR place EQUAL -1)
    message(SEND_ERROR "${name}: expected a failure with \"${expected}\", got ${result}: ${said}")
  endif()
endfunction()

set(install "quenlith_install_bundle(demo): use NAME [DESTINATION folder]")
expect_misuse(UnknownArgument "quenlith_install_bundle(demo DESTINATIONS bundles)" "${install}")
expect_misuse(SecondName "quenlith_install_bundle(demo other)" "${install}")
expect_misuse(NoDestination "quenlith_install_bundle(demo DESTINATION)" "${install}")
set(add "quenlith_add_bundle(demo): use NAME MANIFEST file SOURCES source... [LINK target...] [OUTPUT_NAME name]")
expect_misuse(NoOutputName "quenlith_add_bundle(demo MANIFEST a SOURCES b OUTPUT_NAME)" "${add}")
expect_misuse(NoManifest "quenlith_add_bundle(demo SOURCES b)" "${add}")
