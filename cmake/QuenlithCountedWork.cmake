# quenlith_count_work(TARGET LIBRARY...)
#
# Links the sources of the libraries into the test program TARGET, compiled so that every basic block that
# they run is counted (support/CountedWork.hpp), with the optimisation of the preset dev in every build: a limit
# of their work is a limit of that code. The libraries themselves must not be linked.
function(quenlith_count_work target)
  target_link_libraries(${target} PRIVATE test_counted_work)
  foreach(library IN LISTS ARGN)
    if(NOT TARGET counted_${library})
      quenlith_add_counted_library(${library} ${ARGN})
    endif()
    target_link_libraries(${target} PRIVATE counted_${library})
  endforeach()
  # A sanitizer finds nothing in these programs that it does not find in others.
  list(TRANSFORM ARGN PREPEND "counted_" OUTPUT_VARIABLE libraries)
  quenlith_mark_slow(${target} ${libraries})
endfunction()

# Defines counted_LIBRARY, whose sources include headers of the libraries OTHER.
function(quenlith_add_counted_library library) # OTHER...
  add_library(counted_${library} OBJECT)
  get_target_property(folder quenlith_${library} SOURCE_DIR)
  get_target_property(sources quenlith_${library} SOURCES)
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  list(TRANSFORM sources PREPEND "${folder}/" REGEX "^[^/]")
  target_sources(counted_${library} PRIVATE ${sources})
  target_include_directories(counted_${library} PUBLIC
    $<TARGET_PROPERTY:quenlith_${library},INTERFACE_INCLUDE_DIRECTORIES>)
  foreach(other IN LISTS ARGN)
    target_include_directories(counted_${library} PRIVATE
      $<TARGET_PROPERTY:quenlith_${other},INTERFACE_INCLUDE_DIRECTORIES>)
  endforeach()
  target_compile_options(counted_${library} PRIVATE -O1 -fsanitize-coverage=trace-pc)
endfunction()
