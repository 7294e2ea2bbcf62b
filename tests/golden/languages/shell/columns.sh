#!/bin/sh
# Adds up the widths of the columns of a table.
# <@text:anchor#overview>
set -eu

default_width=12 # <@control:slider#width [14,16] {"min":1,"max":40}>
columns="name:$default_width size:8 date:$default_width"

count=0
total=0
# <@task#sum>
for column in $columns; do
  total=$((total + ${column#*:})) # <@output#total [2,7] {"format":"short"}>
  count=$((count + 1)); done # <@task#sum>

total=$((total + 2 * (count - 1)))
printf '%d columns, %d characters\n' "$count" "$total"
exit 0
# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
