a = "// <@text:anchor#a>"
