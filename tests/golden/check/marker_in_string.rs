fn main() {
    let a = "# <@text:anchor#one>";
    let b = r##"# <@text:anchor#two> "# "##;
    let c: &'static str = "it's"; // <@text:anchor#four>
    let d = '"'; // <@text:anchor#five>
    /* /* nested */ "# */ // <@text:anchor#six>
}
