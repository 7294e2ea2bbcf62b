a := `
// <@text:anchor#a>
`  // <@text:anchor#b>
c := '`'  // <@text:anchor#c>
