"""Adds up the widths of the columns of a table."""
# <@text:anchor#overview>
from dataclasses import dataclass, field

DEFAULT_WIDTH = 12  # <@control:slider#width [16,18] {"min":1,"max":40}>


@dataclass
class Column:
    title: str
    width: int = DEFAULT_WIDTH
    cells: list = field(default_factory=list)


columns = [Column("name"), Column("size", 8), Column("date")]
## <@task#sum>
gaps = 2 * (len(columns) - 1)
total = sum(column.width for column in columns) + gaps    # <@output#total [0,5] {"format":"short"}>
## <@task#sum>
print(f"{len(columns)} columns, {total} characters")

# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
