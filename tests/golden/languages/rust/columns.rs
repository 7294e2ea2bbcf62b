//! Adds up the widths of the columns of a table.

/// <@text:anchor#overview>
struct Column {
    title: &'static str,
    width: usize,
}

const DEFAULT_WIDTH: usize = 12; // <@control:slider#width [29,31] {"min":1,"max":40}>

fn main() {
    let columns = [
        Column { title: "name", width: DEFAULT_WIDTH },
        Column { title: "size", width: 8 },
    ];
    // <@task#sum>
    let gaps = 2 * (columns.len() - 1);
    let total = columns.iter().map(|column| column.width).sum::<usize>() + gaps; /* <@output#total [8,13] {"format":"short"}> */
    // <@task#sum>
    println!("{}: {} characters", columns[0].title, total);
}
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
