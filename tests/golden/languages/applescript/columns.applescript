(* <@text:anchor#overview> *)
property defaultWidth : 12 -- <@control:slider#width [24,26] {"min":1,"max":40}>

on sumOf(widths)
	set total to 2 * ((count of widths) - 1)
	repeat with width in widths
		set total to total + width
	end repeat
	return total
end sumOf

set widths to {defaultWidth, 8, defaultWidth}
-- <@task#sum>
set columnCount to count of widths
set total to my sumOf(widths) # <@output#total [4,9] {"format":"short"}>
-- <@task#sum>
display dialog (columnCount as text) & " columns, " & total & " characters"
-- <@appendix>
-- <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
