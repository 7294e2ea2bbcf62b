# <@text:anchor#overview>
defmodule Column do
  defstruct title: "", width: 12 # <@control:slider#width [30,32] {"min":1,"max":40}>
end

columns = [
  %Column{title: "name"},
  %Column{title: "size", width: 8},
  %Column{title: "date"}
]

# <@task#sum>
gaps = 2 * (length(columns) - 1)
total = columns |> Enum.map(& &1.width) |> Enum.sum() |> Kernel.+(gaps) # <@output#total [0,5] {"format":"short"}>
# <@task#sum>

IO.puts("#{length(columns)} columns, #{total} characters")
# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
