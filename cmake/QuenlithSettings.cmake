# Settings of every target: the language, visibility, output folders and warnings.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Kind of build" FORCE)
endif()

# Functions of a shared library are never replaced at load time, so calls within it can be direct and
# inlined.
add_compile_options(-fno-semantic-interposition)
add_link_options(-Wl,-Bsymbolic-functions)

# What is installed does not depend on where it was built: __FILE__ and the like give relative paths.
foreach(option IN ITEMS "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=." "-ffile-prefix-map=${PROJECT_BINARY_DIR}=./build")
  add_compile_options("$<$<CONFIG:Release>:${option}>")
endforeach()

# What is installed gets the usual protection against attacks on its memory. tests/package/hardening.py checks the files.
option(QUENLITH_HARDENING "Protect what a Release build makes against attacks on its memory" ON)
if(QUENLITH_HARDENING)
  set(hardeningOptions
    -fstack-protector-strong -fstack-clash-protection -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    list(APPEND hardeningOptions -fcf-protection=full)
  elseif(CMAKE_SYSTEM_PROCESSOR STREQUAL "aarch64")
    list(APPEND hardeningOptions -mbranch-protection=standard)
  endif()
  add_compile_options("$<$<CONFIG:Release>:${hardeningOptions}>")
  add_link_options("$<$<CONFIG:Release>:-Wl,-z,relro,-z,now,-z,noexecstack>"
    "$<$<AND:$<CONFIG:Release>,$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>>:-pie>")
endif()

# The build tree has the layout of the installed tree, so that programs find libraries and bundles
# relative to themselves in both.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR}")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR}")
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
# A separate search path for the build tree would be padded with colons, to leave space for the
# installed one, and the loader takes an empty element for the current folder.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)

# Only Debian's own Python finds the modules of Debian's packages.
if(NOT Python3_EXECUTABLE AND EXISTS /usr/bin/python3)
  set(Python3_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "Python for the checks")
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Without this ccache does not cache sources with precompiled headers.
  set(CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_SLOPPINESS=pch_defines,time_macros "${CCACHE_PROGRAM}")
endif()

option(QUENLITH_WERROR "Treat warnings as errors" ON)
add_library(quenlith_warnings INTERFACE)
target_compile_options(quenlith_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wnon-virtual-dtor -Wold-style-cast
  # Local variables only: a constructor parameter has the name of the member that it sets. clang's -Wshadow
  # also reports every other parameter with the name of a member, and has no narrower form.
  $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>
  $<$<BOOL:${QUENLITH_WERROR}>:-Werror>
  # False reports of g++ 12 on std::string and inlined copies at -O3.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict;-Wno-array-bounds>)

# A test program runs for seconds: optimising it takes longer than it saves, half of the time that it
# takes to compile. Some warnings of g++ need the analysis of -O1.
set(QUENLITH_TEST_OPTIONS $<IF:$<CONFIG:Release>,-O1,-O0>
  # False reports of g++ 12 on std::string at -O1.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overflow>)

# Most of the time of a source goes into the headers and templates that other sources of its target use too.
option(QUENLITH_UNITY "Compile several sources of a target at once" OFF)
set(CMAKE_UNITY_BUILD ${QUENLITH_UNITY})
set(CMAKE_UNITY_BUILD_BATCH_SIZE 16)

# Sanitizers: a list such as "address,undefined" or "thread".
set(QUENLITH_SANITIZE "" CACHE STRING "Sanitizers to build everything with")
if(QUENLITH_SANITIZE)
  add_compile_options(-fsanitize=${QUENLITH_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${QUENLITH_SANITIZE})
else()
  # A file names only the libraries that it uses, and so does its package. Debian's g++ does this by itself.
  add_link_options(-Wl,--as-needed)
endif()

option(QUENLITH_COVERAGE "Count what is reached (clang only)" OFF)
if(QUENLITH_COVERAGE)
  # The counters are in the file itself: they survive abort(), and count destructors that run last.
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping "SHELL:-mllvm -runtime-counter-relocation")
  add_link_options(-fprofile-instr-generate)
endif()

option(QUENLITH_FUZZ "Build the fuzz targets with libFuzzer instead of replaying their corpus (clang only)" OFF)
if(QUENLITH_FUZZ)
  # What comparisons compare helps libFuzzer to find words, which its dictionaries have, and takes a tenth of the time.
  add_compile_options(-fsanitize=fuzzer-no-link -fno-sanitize-coverage=trace-cmp)
endif()
