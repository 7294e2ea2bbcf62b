/* <@text:anchor#overview> */
{ lib, defaultWidth ? 12 }: # <@control:slider#width [22,24] {"min":1,"max":40}>

let
  column = title: { inherit title; width = defaultWidth; };
  columns = [
    (column "name")
    (column "size" // { width = 8; })
    (column "date")
  ];
  # <@task#sum>
  gaps = 2 * (lib.length columns - 1);
  total = lib.foldl' (sum: c: sum + c.width) gaps columns; # <@output#total [2,7] {"format":"short"}>
  # <@task#sum>
in
{
  inherit columns total;
  titles = lib.concatMapStringsSep " " (c: c.title) columns;
}
# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
