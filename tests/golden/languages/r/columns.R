#' Adds up the widths of the columns of a table.
# <@text:anchor#overview>
default_width <- 12 # <@control:slider#width [17,19] {"min":1,"max":40}>

columns <- data.frame(
  title = c("name", "size", "date"),
  width = c(default_width, 8, default_width)
)

# <@task#sum>
gaps <- 2 * (nrow(columns) - 1)
total <- sum(columns$width) + gaps # <@output#total [0,5] {"format":"short"}>
# <@task#sum>
cat(sprintf("%d columns, %d characters\n", nrow(columns), total))

# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
