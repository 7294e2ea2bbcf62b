# quenlith_count_work(TARGET LIBRARY...)
#
# Compiles the sources of the libraries again, into the test program TARGET, so that every basic block
# that they run is counted (support/CountedWork.hpp). The libraries themselves must not be linked.
function(quenlith_count_work target)
  target_sources(${target} PRIVATE "${PROJECT_SOURCE_DIR}/tests/support/CountedWork.cpp")
  foreach(library IN LISTS ARGN)
    add_library(${target}_${library} OBJECT)
    get_target_property(folder quenlith_${library} SOURCE_DIR)
    get_target_property(sources quenlith_${library} SOURCES)
    list(FILTER sources INCLUDE REGEX "\\.cpp$")
    list(TRANSFORM sources PREPEND "${folder}/")
    target_sources(${target}_${library} PRIVATE ${sources})
    target_include_directories(${target}_${library} PUBLIC
      $<TARGET_PROPERTY:quenlith_${library},INTERFACE_INCLUDE_DIRECTORIES>)
    foreach(other IN LISTS ARGN)
      target_include_directories(${target}_${library} PRIVATE
        $<TARGET_PROPERTY:quenlith_${other},INTERFACE_INCLUDE_DIRECTORIES>)
    endforeach()
    target_compile_options(${target}_${library} PRIVATE -fsanitize-coverage=trace-pc)
    target_link_libraries(${target} PRIVATE ${target}_${library})
  endforeach()
  # A sanitizer finds nothing in these programs that it does not find in others.
  list(TRANSFORM ARGN PREPEND "${target}_" OUTPUT_VARIABLE libraries)
  quenlith_mark_slow(${target} ${libraries})
endfunction()
