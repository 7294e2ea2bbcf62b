using System;
using System.Linq;

namespace Tables
{
    /// <@text:anchor#overview>
    public record Column(string Title, int Width = 12); // <@control:slider#width [51,53] {"min":1,"max":40}>

    internal static class Program
    {
        private static void Main()
        {
            var columns = new[] { new Column("name"), new Column("size", 8), new Column("date") };
            /* <@task#sum> */
            var gaps = 2 * (columns.Length - 1);
            var total = columns.Sum(column => column.Width) + gaps; // <@output#total [16,21] {"format":"short"}>
            /* <@task#sum> */
            Console.WriteLine($"{columns.Length} columns, {total} characters");
        }
    }
}
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
