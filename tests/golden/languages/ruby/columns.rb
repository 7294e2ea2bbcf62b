# frozen_string_literal: true

# <@text:anchor#overview>
DEFAULT_WIDTH = 12 # <@control:slider#width [16,18] {"min":1,"max":40}>

Column = Struct.new(:title, :width) do
  def initialize(title, width = DEFAULT_WIDTH)
    super
  end
end

columns = [Column.new('name'), Column.new('size', 8), Column.new('date')]
# <@task#sum>
gaps = 2 * (columns.size - 1)
total = columns.sum(&:width) + gaps # <@output#total [0,5] {"format":"short"}>
# <@task#sum>
puts "#{columns.size} columns, #{total} characters"

# <@appendix>
# <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
