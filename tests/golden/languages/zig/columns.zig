const std = @import("std");

/// <@text:anchor#overview>
const Column = struct {
    title: []const u8,
    width: usize = 12, // <@control:slider#width [19,21] {"min":1,"max":40}>
};

const columns = [_]Column{
    .{ .title = "name" },
    .{ .title = "size", .width = 8 },
};

pub fn main() void {
    var total: usize = 2 * (columns.len - 1);
    // <@task#sum>
    for (columns) |column|
        total += column.width; // <@output#total [8,13] {"format":"short"}>
    // <@task#sum>
    std.debug.print("{d} columns, {d} characters\n", .{ columns.len, total });
}
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
