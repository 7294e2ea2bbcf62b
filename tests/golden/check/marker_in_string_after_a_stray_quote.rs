fn main() {
    let a = 1; // 12" <@text:anchor#one>
    let b = 2"; // <@text:anchor#one>
    let c = "3"; // <@output#c [12,15] {"format":"short"}>
    let d = "4"; // <@text:anchor#two>
}
// <@text:anchor#three>
