structure Columns =
struct
  (* <@text:anchor#overview> *)
  type column = { title : string, width : int }

  val defaultWidth = 12 (* <@control:slider#width [21,23] {"min":1,"max":40}> *)

  fun column title = { title = title, width = defaultWidth }

  val columns : column list =
    [column "name", { title = "size", width = 8 }, column "date"]
  (* <@task#sum> *)
  val gaps = 2 * (length columns - 1)
  val total = foldl (fn (c, sum) => #width c + sum) gaps columns (* <@output#total [6,11] {"format":"short"}> *)
  (* <@task#sum> *)
end

val () = print (Int.toString Columns.total ^ " characters\n")
(* <@appendix> *)
(* <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}> *)
