#!/bin/sh
# <@text:anchor#"keep these safe">
set -eu
source="$HOME/Documents"  # <@control:folder#source [8,23]>
target="/mnt/backup"      ## <@control:folder#target [8,19] {"mustExist":true}>
# <@text:anchor#run>   # <@text:anchor#again>
tar -cf "$target/documents.tar" "$source"
# A backslash behind two percent signs goes away, and then this is a marker: %%\<@output#log>
# Not taken, since something stands between the two: <.@output#log>
du -sh "$target"  # <@output#size [0,16]>
