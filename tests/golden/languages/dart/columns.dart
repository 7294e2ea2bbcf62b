/// <@text:anchor#overview>
class Column {
  final String title;
  final int width;

  const Column(this.title, [this.width = 12]); // <@control:slider#width [41,43] {"min":1,"max":40}>
}

void main() {
  const columns = [Column('name'), Column('size', 8), Column('date')];
  // <@task#sum>
  final gaps = 2 * (columns.length - 1);
  final total = columns.fold<int>(gaps, (sum, c) => sum + c.width); /* <@output#total [8,13] {"format":"short"}> */
  // <@task#sum>
  print('${columns.length} columns, $total characters');
}
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
