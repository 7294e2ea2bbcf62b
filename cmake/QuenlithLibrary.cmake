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

# quenlith_add_fuzzers(NAME TARGETS target... SOURCES ... TABLE file [LINK ...])
#
# Defines fuzz targets that share their sources and libraries. The function of the target `one` is
# quenlith::fuzz::checkOne (tests/fuzz/targets.hpp); its corpus is the folder corpus/one.
#
# With QUENLITH_FUZZ, libFuzzer drives each target in a program one_fuzz, whose test is a short run that
# starts from the corpus; the target `fuzzers` builds all of them. Otherwise the program NAME, with the table
# of the targets in the source TABLE, replays every file of their corpora as one test.
function(quenlith_add_fuzzers name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "TABLE" "TARGETS;SOURCES;LINK")
  if(NOT QUENLITH_FUZZ)
    add_executable(${name} ${arg_SOURCES} ${arg_TABLE} replayCorpus.cpp)
    # GoogleTest is in the precompiled headers.
    quenlith_configure_fuzzer(${name} ${arg_LINK} GTest::gtest GTest::gmock)
    target_compile_options(${name} PRIVATE ${QUENLITH_TEST_OPTIONS})
    quenlith_precompile(${name} TEST)
    add_test(NAME ${name} COMMAND ${name} "${CMAKE_CURRENT_SOURCE_DIR}/corpus")
    return()
  endif()
  add_library(${name}_targets STATIC ${arg_SOURCES})
  quenlith_configure_fuzzer(${name}_targets ${arg_LINK})
  # Only the sources that a target needs are part of its program.
  set_target_properties(${name}_targets PROPERTIES UNITY_BUILD OFF)
  foreach(target IN LISTS arg_TARGETS)
    quenlith_add_fuzz_program(${target} ${name}_targets)
  endforeach()
endfunction()

function(quenlith_configure_fuzzer program) # LINK...
  target_link_libraries(${program} PRIVATE quenlith_warnings ${ARGN})
  target_include_directories(${program} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
endfunction()

function(quenlith_add_fuzz_program target library)
  set(program ${target}_fuzz)
  string(SUBSTRING ${target} 0 1 initial)
  string(SUBSTRING ${target} 1 -1 others)
  string(TOUPPER ${initial} initial)
  add_executable(${program} fuzzTarget.cpp)
  quenlith_configure_fuzzer(${program} ${library})
  target_compile_definitions(${program} PRIVATE QUENLITH_FUZZ_TARGET=check${initial}${others})
  # libFuzzer looks at the counters of every library after each input.
  target_link_options(${program} PRIVATE -fsanitize=fuzzer -Wl,--as-needed)
  if(NOT TARGET fuzzers)
    add_custom_target(fuzzers)
  endif()
  add_dependencies(fuzzers ${program})
  add_test(NAME ${program}
    COMMAND "${Python3_EXECUTABLE}" "${PROJECT_SOURCE_DIR}/scripts/lib/fuzz.py" "${CMAKE_BINARY_DIR}"
      "${CMAKE_CURRENT_SOURCE_DIR}" 30 ${target})
endfunction()

# quenlith_compile_twin(SOURCE...)
#
# Compiles sources of the calling folder for speed, and without sanitizers, in a fuzz build. They contain only
# independent implementations, with which fuzz targets compare the real ones: what is to be found is in those.
# They must not call inline functions of the model, which do more when a sanitizer looks at its blocks.
function(quenlith_compile_twin)
  if(QUENLITH_FUZZ)
    set_property(SOURCE ${ARGN} APPEND PROPERTY COMPILE_OPTIONS -O2 -fno-sanitize=all)
  endif()
endfunction()
