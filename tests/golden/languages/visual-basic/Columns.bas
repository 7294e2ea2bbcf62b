Attribute VB_Name = "Columns"
Option Explicit
REM <@text:anchor#overview>
Private Const DefaultWidth As Long = 12: rem <@control:slider#width [37,39] {"min":1,"max":40}>

Public Sub PrintTotal()
    Dim widths As Variant, index As Long, total As Long
    widths = Array(DefaultWidth, 8, DefaultWidth)
    total = 2 * UBound(widths)
    REM <@task#sum>
    For index = 0 To UBound(widths)
        total = total + widths(index): rem <@output#total [8,13] {"format":"short"}>
    Next index: REM <@task#sum>
    Debug.Print UBound(widths) + 1 & " columns, " & total & " characters"
End Sub
REM <@appendix>
REM <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
