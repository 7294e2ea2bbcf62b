package tables

// <@text:anchor#overview>
object Columns {
  val defaultWidth = 12 // <@control:slider#width [21,23] {"min":1,"max":40}>

  final case class Column(title: String, width: Int = defaultWidth)

  def main(args: Array[String]): Unit = {
    val columns = Vector(Column("name"), Column("size", 8), Column("date"))
    /* <@task#sum> */
    val gaps = 2 * (columns.size - 1)
    val total = columns.map(_.width).sum + gaps // <@output#total [8,13] {"format":"short"}>
    /* <@task#sum> */
    println(s"${columns.size} columns, $total characters")
  }
}
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
