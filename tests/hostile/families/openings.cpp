#include "hostile/families.hpp"

namespace hostile {

namespace {

fl::i18n::ustring longLeader() {
  return fl::i18n::ustring(100, u'#');
}

}  // namespace

// Beginnings of markers: leaders without openings, openings that never close.
std::vector<Family> openingFamilies() {
  return {
      run("half openings", u"", u'<'),
      run("other halves", u"", u'@'),
      repeated("openings", u"", u"<@"),
      repeated("openings on lines", u"", u"<@\n"),
      repeated("openings with leaders", u"", u"#<@"),
      repeated("openings with leaders on lines", u"", u"# <@task\n"),
      run("one leader", u"", u'#'),
      run("a long leader", u"", u'#', u"<@task>"),
      repeated("a leader of all kinds", u"", u"%#;!/-*(<!{REM rem "),
      repeated("slashes", u"", u"/"),
      repeated("remarks", u"", u"REM "),
      repeated("remarks before openings", u"", u"REM <@"),
      repeated("leaders and blanks", u"", u"#                                <@"),
      run("a leader and blanks", u"#", u' ', u"<@task"),
      repeated("openings after a long leader", longLeader(), u"<@task "),
      run("a long type", u"# <@task:", u'a'),
      run("a long type of a marker", u"# <@task:", u'a', u">\n"),
      repeated("a long element", u"# <@", u"task$", u"#a>\n"),
      run("a long id", u"# <@output#", u'a', u">\n"),
      run("a long id that does not end", u"# <@output#", u'a'),
      run("a long quoted id", u"# <@output#\"", u'a', u"\">\n"),
      run("a long quoted id that does not end", u"# <@output#\"", u'a'),
      repeated("a quoted id of escapes", u"# <@output#\"", u"\\ud800\\n\\\"", u"\">\n"),
      run("a range that does not end", u"# <@output [", u'9'),
      repeated("a line of brackets", u"# <@output", u" [0,}"),
      repeated("a line of halves", u"", u"@ < "),
      run("blanks in a marker", u"# <@text:anchor#a", u' ', u">\n"),
      run("blanks in a marker that is damaged", u"# <@text:anchor#a", u' ', u"x>\n"),
      repeated("blanks after a marker, then openings", u"#<@task>                ", u"   <@"),
      repeated("markers on a line", u"", u"#<@output>"),
      repeated("anchors on a line", u"", u"# <@text:anchor#t$> "),
      repeated("markers on lines", u"", u"x # <@output#\"i\" [0,2] {\"a\":[1,2.5,\"b\"]}>\n"),
      repeated("unknown elements", u"", u"#<@widget {\"a\":\"#<@widget\"}>"),
      repeated("unclosed ids", u"", u"#<@task#\""),
      repeated("unclosed ids and data", u"", u"#<@task#\" {\"a\":\""),
      repeated("unclosed markers on a line", u"", u"# <@text:anchor#t$ "),
  };
}

}  // namespace hostile
