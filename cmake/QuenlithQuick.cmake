# quenlith_mark_slow(TARGET [LIBRARY...])
#
# Gives the test of the program TARGET the label "slow", which the quick presets leave out, and keeps
# the program and the libraries made for it alone out of the target `quick`.
function(quenlith_mark_slow target)
  set_property(TEST ${target} APPEND PROPERTY LABELS slow)
  set_property(GLOBAL APPEND PROPERTY QUENLITH_SLOW_TARGETS ${target} ${ARGN})
endfunction()

# The target `quick`: everything that the quick tests need.
function(quenlith_add_quick)
  quenlith_all_targets(targets "${PROJECT_SOURCE_DIR}")
  get_property(slow GLOBAL PROPERTY QUENLITH_SLOW_TARGETS)
  list(REMOVE_ITEM targets ${slow})
  add_custom_target(quick)
  add_dependencies(quick ${targets})
endfunction()

# Sets `result` to every target that is built, in `folder` and the folders below it.
function(quenlith_all_targets result folder)
  get_property(targets DIRECTORY "${folder}" PROPERTY BUILDSYSTEM_TARGETS)
  get_property(below DIRECTORY "${folder}" PROPERTY SUBDIRECTORIES)
  foreach(child IN LISTS below)
    quenlith_all_targets(more "${child}")
    list(APPEND targets ${more})
  endforeach()
  set(${result} "${targets}" PARENT_SCOPE)
endfunction()
