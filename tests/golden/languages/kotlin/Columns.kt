package com.example.tables

/* <@text:anchor#overview> */
const val DEFAULT_WIDTH = 12 // <@control:slider#width [26,28] {"min":1,"max":40}>

data class Column(val title: String, val width: Int = DEFAULT_WIDTH)

fun main() {
    val columns = listOf(
        Column("name"),
        Column("size", 8),
        Column("date"),
    )
    // <@task#sum>
    val gaps = 2 * (columns.size - 1)
    val total = columns.sumOf { it.width } + gaps // <@output#total [8,13] {"format":"short"}>
    // <@task#sum>
    println("${columns.size} columns, $total characters")
}
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
