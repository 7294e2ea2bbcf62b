(* <@text:anchor#overview> *)
type column = { title : string; width : int }

let default_width = 12 (* <@control:slider#width [20,22] {"min":1,"max":40}> *)

let column ?(width = default_width) title = { title; width }

let columns = [ column "name"; column "size" ~width:8; column "date" ]

let () =
  (** <@task#sum> *)
  let gaps = 2 * (List.length columns - 1) in
  let total = List.fold_left (fun sum c -> sum + c.width) gaps columns in (* <@output#total [6,11] {"format":"short"}> *)
  (** <@task#sum> *)
  List.iter (fun c -> print_endline c.title) columns;
  Printf.printf "%d characters\n" total
(* <@appendix> *)
(* <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}> *)
