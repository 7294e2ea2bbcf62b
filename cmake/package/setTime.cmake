# Run by cpack before each generator: sets the time of everything in the packages, unless the caller has
# set it, to that of the last commit. Without one, as in a copy of the sources, it is the start of 1980, the
# first time that a zip archive can contain.
if("$ENV{SOURCE_DATE_EPOCH}" STREQUAL "")
  execute_process(COMMAND git -C "${CPACK_QUENLITH_SOURCE}" log -1 --format=%ct
    RESULT_VARIABLE status OUTPUT_VARIABLE seconds ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT status EQUAL 0)
    set(seconds 315532800)
  endif()
  set(ENV{SOURCE_DATE_EPOCH} "${seconds}")
endif()
