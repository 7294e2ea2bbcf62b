const char* a = "// <@text:anchor#a>";
char b = '"';  // <@text:anchor#b>
// don't  // <@text:anchor#c>
/* " */  // <@text:anchor#d>
auto e = R"(
// <@text:anchor#e> ")";  // <@text:anchor#f>
auto g = 1'000'000;  // <@text:anchor#g>
#error don't stop
// <@text:anchor#h>
auto i = R"x(// <@text:anchor#i> )" // <@text:anchor#j>)x";
const char* k = "\
// <@text:anchor#k>";
