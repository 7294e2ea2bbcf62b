#!/usr/bin/awk -f
# <@text:anchor#overview>
BEGIN {
    FS = ","
    width = 12 # <@control:slider#width [12,14] {"min":1,"max":40}>
}

NR == 1 { next }
NF < 2 || $2 == "" { $2 = width }

# <@task#sum>
{ count += 1 }
{ total += $2 } # <@output#total [2,7] {"format":"short"}>
# <@task#sum>

END {
    total += 2 * (count - 1)
    printf "%d columns, %d characters\n", count, total
}
# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
