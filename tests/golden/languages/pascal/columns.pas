program Columns;
{$mode objfpc}{$H+}

(* <@text:anchor#overview> *)
const
  DefaultWidth = 12; // <@control:slider#width [17,19] {"min":1,"max":40}>
  Widths: array[1..3] of Integer = (DefaultWidth, 8, DefaultWidth);

var
  Index, total: Integer;

begin
  total := 2 * (Length(Widths) - 1);
  // <@task#sum>
  for Index := Low(Widths) to High(Widths) do
    total := total + Widths[Index]; // <@output#total [4,9] {"format":"short"}>
  // <@task#sum>
  WriteLn(Length(Widths), ' columns, ', total, ' characters');
end.
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
