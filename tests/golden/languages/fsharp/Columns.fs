module Columns

// <@text:anchor#overview>
type Column = { Title: string; Width: int }

let defaultWidth = 12 (* <@control:slider#width [19,21] {"min":1,"max":40}> *)

let column title = { Title = title; Width = defaultWidth }

let columns = [ column "name"; { column "size" with Width = 8 }; column "date" ]

// <@task#sum>
let gaps = 2 * (List.length columns - 1)
let total = List.sumBy (fun c -> c.Width) columns + gaps // <@output#total [4,9] {"format":"short"}>
// <@task#sum>

[<EntryPoint>]
let main _ =
    printfn "%d columns, %d characters" (List.length columns) total
    0
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
