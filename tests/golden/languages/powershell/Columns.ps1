#Requires -Version 5.1
# <@text:anchor#overview>
param(
    [int] $DefaultWidth = 12 # <@control:slider#width [26,28] {"min":1,"max":40}>
)

$columns = @(
    [pscustomobject]@{ Title = 'name'; Width = $DefaultWidth }
    [pscustomobject]@{ Title = 'size'; Width = 8 }
)

# <@task#sum>
$gaps = 2 * ($columns.Count - 1)
$total = ($columns | Measure-Object -Property Width -Sum).Sum + $gaps # <@output#total [1,6] {"format":"short"}>
# <@task#sum>

Write-Output "$($columns.Count) columns, $total characters"
# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
