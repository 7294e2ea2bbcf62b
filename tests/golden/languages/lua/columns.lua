local M = {}

-- <@text:anchor#overview>
local default_width = 12 -- <@control:slider#width [22,24] {"min":1,"max":40}>

function M.column(title, width)
  return { title = title, width = width or default_width }
end

local columns = { M.column("name"), M.column("size", 8), M.column("date") }
local total = 2 * (#columns - 1)
--- <@task#sum>
for _, column in ipairs(columns) do
  total = total + column.width -- <@output#total [2,7] {"format":"short"}>
end --- <@task#sum>
print(("%d columns, %d characters"):format(#columns, total))

return M
-- <@appendix>
-- <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
