# quenlith_embed_bundle_template(FOLDER PATTERN SOURCE FILE path ...)
#
# Writes SOURCE from PATTERN, with the texts of the files in FOLDER in place of %FILES%. Each FILE in FOLDER is
# followed by the path that it has in a new bundle.
function(quenlith_embed_bundle_template folder pattern source)
  set(rows)
  while(ARGN)
    list(POP_FRONT ARGN file path)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${folder}/${file}")
    file(READ "${folder}/${file}" text)
    string(APPEND rows "    {\"${path}\", R\"__(${text})__\"},\n")
  endwhile()
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${pattern}")
  file(READ "${pattern}" text)
  string(REPLACE "%FILES%" "${rows}" text "${text}")
  # The texts contain generator expressions and @NAME@, which file(GENERATE) and configure_file would replace.
  # An equal file is left alone, so that it is not compiled again.
  set(written)
  if(EXISTS "${source}")
    file(READ "${source}" written)
  endif()
  if(NOT written STREQUAL text)
    file(WRITE "${source}" "${text}")
  endif()
endfunction()
