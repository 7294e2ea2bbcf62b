# Embeds a style sheet or a script in a source, with the hash that allows it in a content security policy.

# quenlith_embed_page_text(FILE TEMPLATE SOURCE): writes SOURCE from TEMPLATE, in which @text@ is the text of FILE without
# comments (/* */) and indentation, and @hash@ its SHA-256 in base64.
function(quenlith_embed_page_text file template source)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
  file(READ "${file}" text)
  string(REGEX REPLACE "/\\*[^*]*\\*+([^/*][^*]*\\*+)*/" "" text "${text}")
  string(REGEX REPLACE "\n[ \n]*" "\n" text "${text}")
  string(STRIP "${text}" text)
  string(SHA256 digits "${text}")
  quenlith_base64_of_hash(${digits} hash)
  configure_file("${template}" "${source}" @ONLY)
endfunction()

# Sets a variable to the 32 bytes, given as hexadecimal digits, in base64.
function(quenlith_base64_of_hash hash resultVariable)
  set(digits "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  set(result "")
  # Three bytes are four digits; of the last group, one byte is missing.
  foreach(begin RANGE 0 60 6)
    string(SUBSTRING "${hash}00" ${begin} 6 group)
    foreach(shift 18 12 6 0)
      math(EXPR digit "(0x${group} >> ${shift}) & 63")
      string(SUBSTRING "${digits}" ${digit} 1 digit)
      string(APPEND result "${digit}")
    endforeach()
  endforeach()
  string(REGEX REPLACE ".$" "=" result "${result}")
  set(${resultVariable} "${result}" PARENT_SCOPE)
endfunction()
