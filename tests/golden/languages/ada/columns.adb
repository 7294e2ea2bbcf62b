with Ada.Text_IO; use Ada.Text_IO;

-- <@text:anchor#overview>
procedure Columns is
   Default_Width : constant Positive := 12; -- <@control:slider#width [40,42] {"min":1,"max":40}>

   type Width_List is array (Positive range <>) of Positive;
   Widths : constant Width_List := (Default_Width, 8, Default_Width);
   Gaps   : Natural;
   total  : Natural := 0;
begin
   for Width of Widths loop
      total := total + Width;
   end loop;
   -- <@task#sum>
   Gaps := 2 * (Widths'Length - 1);
   total := total + Gaps; -- <@output#total [3,8] {"format":"short"}>
   -- <@task#sum>
   Put_Line (Natural'Image (total) & " characters");
end Columns;
-- <@appendix>
-- <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
