package com.example.tables;

import java.util.List;

/* <@text:anchor#overview> */
public final class Columns {
    private static final int DEFAULT_WIDTH = 12; // <@control:slider#width [45,47] {"min":1,"max":40}>

    record Column(String title, int width) {
        Column(String title) {
            this(title, DEFAULT_WIDTH);
        }
    }

    public static void main(String[] args) {
        var columns = List.of(new Column("name"), new Column("size", 8), new Column("date"));
        // <@task#sum>
        int gaps = 2 * (columns.size() - 1);
        int total = gaps + columns.stream().mapToInt(Column::width).sum(); // <@output#total [12,17] {"format":"short"}>
        // <@task#sum>
        System.out.printf("%d columns, %d characters%n", columns.size(), total);
    }
}
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
