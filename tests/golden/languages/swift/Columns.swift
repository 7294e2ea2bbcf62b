import Foundation

/// <@text:anchor#overview>
struct Column {
    let title: String
    var width = 12 /* <@control:slider#width [16,18] {"min":1,"max":40}> */
}

let columns = [
    Column(title: "name"),
    Column(title: "size", width: 8),
    Column(title: "date"),
]
// <@task#sum>
let gaps = 2 * (columns.count - 1)
let total = columns.reduce(gaps) { $0 + $1.width } // <@output#total [4,9] {"format":"short"}>
// <@task#sum>
print("\(columns.count) columns, \(total) characters")

// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
