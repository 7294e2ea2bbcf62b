import std/[math, sequtils, strformat]

## <@text:anchor#overview>
const defaultWidth = 12 # <@control:slider#width [21,23] {"min":1,"max":40}>

type Column = object
  title: string
  width: int

proc column(title: string, width = defaultWidth): Column =
  Column(title: title, width: width)

let columns = @[column("name"), column("size", 8), column("date")]
# <@task#sum>
let gaps = 2 * (columns.len - 1)
let total = columns.mapIt(it.width).sum + gaps # <@output#total [4,9] {"format":"short"}>
# <@task#sum>
echo fmt"{columns.len} columns, {total} characters"
# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
