String a = """
  // <@text:anchor#a>
  """;  // <@text:anchor#b>
