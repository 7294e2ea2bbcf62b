# quenlith_precompile(TARGET LIBRARY|TEST)
#
# With QUENLITH_PRECOMPILE, gives the sources of TARGET the standard headers that most sources include
# (LIBRARY: code for libraries), or these and GoogleTest's (TEST: code for test programs), precompiled
# once for all targets. Halves the time of a library's source with few lines and of a test. The sources
# still include what they use: the presets without the option and the lint compile them alone.
option(QUENLITH_PRECOMPILE "Precompile the headers that most sources include" OFF)

set(QUENLITH_PRECOMPILED_HEADERS
  <algorithm> <cstdint> <functional> <map> <memory> <mutex> <optional> <stdexcept> <string> <string_view>
  <unordered_map> <utility> <variant> <vector>)

if(QUENLITH_PRECOMPILE)
  file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/precompiled/empty.cpp" CONTENT "")
  foreach(kind IN ITEMS LIBRARY TEST)
    add_library(quenlith_precompiled_${kind} OBJECT "${CMAKE_BINARY_DIR}/precompiled/empty.cpp")
    target_compile_features(quenlith_precompiled_${kind} PRIVATE cxx_std_20)
    target_link_libraries(quenlith_precompiled_${kind} PRIVATE quenlith_warnings)
    # Lets ccache see what a source includes besides the precompiled headers.
    target_compile_options(quenlith_precompiled_${kind} PRIVATE
      $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess> $<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>)
  endforeach()
  target_precompile_headers(quenlith_precompiled_LIBRARY PRIVATE ${QUENLITH_PRECOMPILED_HEADERS})
  if(QUENLITH_BUILD_TESTS)
    find_package(GTest REQUIRED)
    target_link_libraries(quenlith_precompiled_TEST PRIVATE GTest::gtest GTest::gmock)
    target_precompile_headers(quenlith_precompiled_TEST PRIVATE
      ${QUENLITH_PRECOMPILED_HEADERS} <gmock/gmock.h> <gtest/gtest.h>)
    # The compiler refuses headers that were precompiled with other options than the program's.
    set_target_properties(quenlith_precompiled_TEST PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    target_compile_options(quenlith_precompiled_TEST PRIVATE -fPIE ${QUENLITH_TEST_OPTIONS})
  endif()
endif()

function(quenlith_precompile target kind)
  if(QUENLITH_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM quenlith_precompiled_${kind})
    target_compile_options(${target} PRIVATE
      $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess> $<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>)
  endif()
endfunction()
