`timescale 1ns / 1ps

// <@text:anchor#overview>
module columns #(
    parameter WIDTH = 12 // <@control:slider#width [22,24] {"min":1,"max":40}>
) (
    input  wire             clk,
    input  wire [WIDTH-1:0] value,
    output reg  [WIDTH-1:0] total
);

  initial total = 0;

  /* <@task#sum> */
  always @(posedge clk)
    total <= total + value; // <@output#total [4,9] {"format":"short"}>
  /* <@task#sum> */

endmodule
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
