# The target `coverage`: runs every test of a build with QUENLITH_COVERAGE and prints the coverage of
# src/ and platform/.
function(quenlith_add_coverage)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  quenlith_all_targets(targets "${PROJECT_SOURCE_DIR}")
  set(profiles "${CMAKE_BINARY_DIR}/profiles")
  add_custom_target(coverage
    # Counters of an earlier build do not fit.
    COMMAND "${CMAKE_COMMAND}" -E rm -rf "${profiles}"
    COMMAND "${CMAKE_COMMAND}" -E env "LLVM_PROFILE_FILE=${profiles}/%c%4m.profraw"
      "${CMAKE_CTEST_COMMAND}" --preset coverage
    COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/scripts/lib/coverage.py" "${CMAKE_BINARY_DIR}"
    WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
    USES_TERMINAL VERBATIM)
  add_dependencies(coverage ${targets})
endfunction()
