# Runs the choice of the framework with an installed one that is too old and with none, and checks its
# messages. Input: SCRIPT, WORK (a folder to write to).
cmake_minimum_required(VERSION 3.25)

set(old "${WORK}/old")
file(WRITE "${old}/lib/cmake/CppMicroServices/CppMicroServicesConfig.cmake" "")
file(WRITE "${old}/lib/cmake/CppMicroServices/CppMicroServicesConfigVersion.cmake"
  "set(PACKAGE_VERSION 3.6.0)\n")
file(MAKE_DIRECTORY "${WORK}/none")

# Runs the choice with TESSERA_FRAMEWORK=`wish` and the prefix path `prefix`; expects it to fail if
# `failure` is true, and a message that contains `expected`.
function(expect_choice wish prefix failure expected)
  execute_process(
    COMMAND "${CMAKE_COMMAND}" -E env --unset=CMAKE_PREFIX_PATH
      "${CMAKE_COMMAND}" "-DTESSERA_FRAMEWORK=${wish}" "-DCMAKE_PREFIX_PATH=${prefix}"
      -DCMAKE_FIND_USE_CMAKE_SYSTEM_PATH=OFF -P "${SCRIPT}"
    RESULT_VARIABLE result OUTPUT_VARIABLE said ERROR_VARIABLE said)
  string(REGEX REPLACE "[ \n]+" " " said "${said}")
  string(FIND "${said}" "${expected}" place)
  set(failed FALSE)
  if(NOT result EQUAL 0)
    set(failed TRUE)
  endif()
  if(place EQUAL -1 OR NOT failed STREQUAL failure)
    message(SEND_ERROR "${wish}: expected \"${expected}\", failure ${failure}, got ${result}: ${said}")
  endif()
endfunction()

set(tooOld "version 3.6.0 (${old}/lib/cmake/CppMicroServices/CppMicroServicesConfig.cmake) is not a 3.x of 3.8 or newer")
expect_choice(auto "${old}" FALSE "Framework: embedded (of CppMicroServices ${tooOld})")
expect_choice(system "${old}" TRUE "TESSERA_FRAMEWORK is 'system', but of CppMicroServices ${tooOld}. Set CMAKE_PREFIX_PATH to an installed 3.8 or newer, or use 'embedded'.")
expect_choice(auto "${WORK}/none" FALSE "Framework: embedded (of CppMicroServices none is installed under CMAKE_PREFIX_PATH)")
expect_choice(system "${WORK}/none" TRUE "TESSERA_FRAMEWORK is 'system', but of CppMicroServices none is installed under CMAKE_PREFIX_PATH.")
expect_choice(embedded "${old}" FALSE "Framework: embedded (as asked for)")
expect_choice(other "${old}" TRUE "TESSERA_FRAMEWORK is 'other': use auto, system or embedded")
