@echo off
REM <@text:anchor#overview>
setlocal enabledelayedexpansion
set /a width=12 & rem <@control:slider#width [13,15] {"min":1,"max":40}>
set /a count=0
set columns=name size date

for %%c in (%columns%) do set /a count+=1

REM <@task#sum>
set /a gaps=2*(count-1)
set /a total=count*width+gaps & rem <@output#total [7,12] {"format":"short"}>
REM <@task#sum>

echo %count% columns, %total% characters
endlocal
exit /b 0
REM <@appendix>
REM <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
