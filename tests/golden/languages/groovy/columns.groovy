package tables

import groovy.transform.Immutable

/* <@text:anchor#overview> */
@Immutable
class Column {
    String title
    int width
}

int defaultWidth = 12 // <@control:slider#width [19,21] {"min":1,"max":40}>
def columns = [new Column('name', defaultWidth), new Column('size', 8)]

// <@task#sum>
def gaps = 2 * (columns.size() - 1)
def total = columns*.width.sum() + gaps // <@output#total [4,9] {"format":"short"}>
// <@task#sum>

println "${columns.size()} columns, ${total} characters"
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
