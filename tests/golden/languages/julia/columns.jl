module Columns

# <@text:anchor#overview>
const DEFAULT_WIDTH = 12  # <@control:slider#width [22,24] {"min":1,"max":40}>

struct Column
    title::String
    width::Int
end
Column(title) = Column(title, DEFAULT_WIDTH)

columns = [Column("name"), Column("size", 8), Column("date")]
# <@task#sum>
gaps = 2 * (length(columns) - 1)
total = sum(c.width for c in columns) + gaps  # <@output#total [0,5] {"format":"short"}>
# <@task#sum>
println("$(length(columns)) columns, $total characters")

end
# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
