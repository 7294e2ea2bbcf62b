include(GenerateExportHeader)

# quenlith_add_library(NAME [INTERFACE|STATIC|SHARED] [ALIAS ns::name] [SOURCES ...]
#                      [HEADERS ...] [INTERNAL ...] [LINK ...] [LINK_PRIVATE ...])
#
# Defines one library from the calling folder. The folder itself is the include root, so a
# header is included by its namespace path. A shared library gets the header
# quenlith/export/NAME.hpp with the macro QUENLITH_<NAME>_EXPORT.
#
# A shared or interface library is installed as Quenlith::NAME with HEADERS; by default, every header of
# the folder except those whose path matches one of the expressions of INTERNAL.
function(quenlith_add_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "INTERFACE;STATIC;SHARED" "ALIAS"
    "SOURCES;HEADERS;INTERNAL;LINK;LINK_PRIVATE")
  set(target quenlith_${name})
  if(arg_INTERFACE)
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  else()
    if(arg_SHARED)
      add_library(${target} SHARED ${arg_SOURCES})
      quenlith_export_header(${target} ${name})
    else()
      add_library(${target} STATIC ${arg_SOURCES})
    endif()
    set(scope PUBLIC)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:quenlith_warnings> ${arg_LINK_PRIVATE})
    quenlith_precompile(${target} LIBRARY)
  endif()
  target_compile_features(${target} ${scope} cxx_std_20)
  target_include_directories(${target} ${scope} "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}>")
  target_link_libraries(${target} ${scope} ${arg_LINK})
  if(arg_ALIAS)
    add_library(${arg_ALIAS} ALIAS ${target})
  endif()
  if(NOT arg_STATIC)
    quenlith_public_headers(${target} ${scope} "${arg_HEADERS}" "${arg_INTERNAL}")
    quenlith_install_library(${target} ${name})
  endif()
endfunction()

function(quenlith_public_headers target scope headers internal)
  if(NOT headers)
    file(GLOB_RECURSE headers RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" CONFIGURE_DEPENDS *.hpp *.h)
    foreach(expression IN LISTS internal)
      list(FILTER headers EXCLUDE REGEX "${expression}")
    endforeach()
  endif()
  target_sources(${target} ${scope} FILE_SET HEADERS
    BASE_DIRS "${CMAKE_CURRENT_SOURCE_DIR}" FILES ${headers})
endfunction()

function(quenlith_export_header target name)
  set(root "${CMAKE_CURRENT_BINARY_DIR}/generated")
  set(header "${root}/quenlith/export/${name}.hpp")
  generate_export_header(${target} BASE_NAME quenlith_${name} EXPORT_FILE_NAME "${header}")
  target_sources(${target} PUBLIC FILE_SET generated TYPE HEADERS BASE_DIRS "${root}" FILES "${header}")
endfunction()

# quenlith_add_test(NAME [OPTIMIZED] SOURCES ... [LINK ...])
#
# Defines one GoogleTest program and one CTest test that runs it: discovering each case separately
# takes longer than running them all. Without OPTIMIZED the program is hardly optimised, and neither are the
# inline functions that it has in common with the libraries linked into it.
function(quenlith_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "OPTIMIZED" "" "SOURCES;LINK")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE quenlith_warnings ${arg_LINK} GTest::gtest GTest::gmock GTest::gtest_main)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  if(NOT arg_OPTIMIZED)
    target_compile_options(${name} PRIVATE ${QUENLITH_TEST_OPTIONS})
    quenlith_precompile(${name} TEST)
  endif()
  add_test(NAME ${name} COMMAND ${name} "--gtest_output=xml:${CMAKE_BINARY_DIR}/reports/${name}.xml")
endfunction()

# quenlith_add_fuzzer(NAME SOURCES ... [LINK ...])
#
# Defines one fuzz target: sources that define LLVMFuzzerTestOneInput, and a folder `corpus/NAME`
# next to them. With QUENLITH_FUZZ, libFuzzer drives it and its test is a short run that starts from the
# corpus; otherwise its test replays every file of the corpus.
function(quenlith_add_fuzzer name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
  set(corpus "${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name}")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE quenlith_warnings ${arg_LINK})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  if(QUENLITH_FUZZ)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    set(found "${CMAKE_BINARY_DIR}/corpus/${name}")
    file(MAKE_DIRECTORY "${found}")
    add_test(NAME ${name} COMMAND ${name} -max_total_time=30 "${found}" "${corpus}")
  else()
    target_sources(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests/fuzz/replayCorpus.cpp")
    add_test(NAME ${name} COMMAND ${name} "${corpus}")
  endif()
endfunction()
