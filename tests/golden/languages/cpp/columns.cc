#include <iostream>
#include <string>
#include <vector>

/// <@text:anchor#overview>
struct Column {
  std::string title;
  int width = 12;  // <@control:slider#width [14,16] {"min":1,"max":40}>
};

int main() {
  const std::vector<Column> columns{{"name"}, {"size", 8}, {"date"}};
  int total = 2 * (static_cast<int>(columns.size()) - 1);
  // <@task#sum>
  for (const Column& column : columns)
    total += column.width;  /* <@output#total [4,9] {"format":"short"}> */
  // <@task#sum>
  std::cout << columns.size() << " columns, " << total << " characters\n";
}
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
