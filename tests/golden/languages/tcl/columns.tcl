#!/usr/bin/env tclsh
# <@text:anchor#overview>
package require Tcl 8.6

set defaultWidth 12 ;# <@control:slider#width [17,19] {"min":1,"max":40}>
array set widths [list name $defaultWidth size 8 date $defaultWidth]

proc sum {numbers} {
    return [tcl::mathop::+ {*}$numbers]
}

# <@task#sum>
set gaps [expr {2 * ([array size widths] - 1)}]
set total [expr {[sum [dict values [array get widths]]] + $gaps}] ;# <@output#total [4,9] {"format":"short"}>
# <@task#sum>
puts "[array size widths] columns, $total characters"
# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
