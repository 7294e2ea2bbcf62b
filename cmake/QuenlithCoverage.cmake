# The target `coverage`: runs every test of a build made with QUENLITH_COVERAGE and prints what of
# src/ and platform/ they reached.
function(quenlith_add_coverage)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  set(profiles "${CMAKE_BINARY_DIR}/profiles")
  add_custom_target(coverage
    # Counters of an earlier build fit no longer.
    COMMAND "${CMAKE_COMMAND}" -E rm -rf "${profiles}"
    COMMAND "${CMAKE_COMMAND}" -E env "LLVM_PROFILE_FILE=${profiles}/%4m.profraw"
      "${CMAKE_CTEST_COMMAND}" --preset coverage
    COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/scripts/lib/coverage.py" "${CMAKE_BINARY_DIR}"
    WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
    USES_TERMINAL VERBATIM)
  quenlith_all_targets(targets "${PROJECT_SOURCE_DIR}")
  add_dependencies(coverage ${targets})
endfunction()

# Sets `result` to every target that is built, in `folder` and the folders below it.
function(quenlith_all_targets result folder)
  get_property(targets DIRECTORY "${folder}" PROPERTY BUILDSYSTEM_TARGETS)
  get_property(below DIRECTORY "${folder}" PROPERTY SUBDIRECTORIES)
  list(REMOVE_ITEM targets coverage)
  foreach(child IN LISTS below)
    quenlith_all_targets(more "${child}")
    list(APPEND targets ${more})
  endforeach()
  set(${result} "${targets}" PARENT_SCOPE)
endfunction()
