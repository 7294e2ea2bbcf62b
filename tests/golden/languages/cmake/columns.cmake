cmake_minimum_required(VERSION 3.20)

# <@text:anchor#overview>
set(default_width 12) # <@control:slider#width [18,20] {"min":1,"max":40}>
set(columns name size date)

function(column_width column result)
  if(column STREQUAL "size")
    set(${result} 8 PARENT_SCOPE)
  else()
    set(${result} ${default_width} PARENT_SCOPE)
  endif()
endfunction()

# <@task#sum>
column_width(size width)
math(EXPR total "2 * ${default_width} + ${width}") # <@output#total [10,15] {"format":"short"}>
# <@task#sum>
message(STATUS "${total} characters")
# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
