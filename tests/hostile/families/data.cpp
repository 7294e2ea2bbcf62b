#include "hostile/families.hpp"

namespace hostile {

// Data of markers: nesting, long keys and numbers, JSON that does not end.
std::vector<Family> dataFamilies() {
  return {
      run("data of many arrays that do not end", u"# <@output {\"a\":", u'['),
      repeated("data of many objects that do not end", u"# <@output ", u"{\"a\":"),
      repeated("data of the greatest depth", u"",
               u"# <@output {\"a\":[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[["
               u"]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]}>\n"),
      repeated("data that is too deep", u"",
               u"# <@output {\"a\":[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[["
               u"[]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]]}>\n"),
      repeated("an array of many elements", u"x # <@output#a [0,1] {\"a\":[0", u",$", u"]}>\n"),
      repeated("many keys", u"x # <@output#a [0,1] {\"a\":0", u",\"k$\":1", u"}>\n"),
      repeated("many keys in descending order", u"x # <@output#a [0,1] {\"a\":0", u",\"k^\":1",
               u"}>\n"),
      repeated("equal keys", u"x # <@output#a [0,1] {\"a\":0", u",\"a\":1", u"}>\n"),
      repeated("many keys, damaged at the end", u"# <@output {\"a\":0", u",\"a\":0"),
      run("a long key", u"x # <@output#a [0,1] {\"", u'k', u"\":1}>\n"),
      run("a long string", u"x # <@output#a [0,1] {\"a\":\"", u's', u"\"}>\n"),
      repeated("a string of escapes", u"x # <@output#a [0,1] {\"a\":\"", u"\\ud83d\\ude00\\ud800",
               u"\"}>\n"),
      run("a long number", u"x # <@output#a [0,1] {\"a\":1", u'9', u"}>\n"),
      run("a long fraction", u"x # <@output#a [0,1] {\"a\":0.", u'9', u"}>\n"),
      run("a long fraction of zeros", u"x # <@output#a [0,1] {\"a\":0.", u'0', u"1}>\n"),
      run("a long exponent", u"x # <@output#a [0,1] {\"a\":1e", u'0', u"1}>\n"),
      repeated("numbers beyond the largest", u"", u"#<@task {\"a\":1e309, \"b\":2"),
      run("blanks in data", u"x # <@output#a [0,1] {", u' ', u"}>\n"),
      repeated("unclosed data", u"", u"#<@task {"),
      repeated("unclosed strings", u"", u"#<@task {\"a\":\"#<@task {\"a\":\""),
      repeated("escaped quotes", u"", u"#<@task {\"a\":\"\\\""),
      repeated("openings in lists", u"", u"#<@task {\",\":[\","),
      repeated("one string over many openings", u"#<@task {\"a\":\"", u"#<@task {"),
      repeated("one string over many ranges", u"#<@task#\"", u"#<@task [1,2"),
      repeated("commas after an opening in a string", u"#<@task {\"a\":[\"#<@task {\",\":[\"",
               u",\""),
      repeated("a line of quotes", u"# <@output#a {", u"\"a\""),
      repeated("bad data on a line", u"", u"# <@output {\"a\": "),
      repeated("bad data on lines", u"", u"# <@output#t$ {\"a\":1,}>\n"),
      repeated("good data on lines", u"", u"x # <@output#t$ [0,1] {\"a\":{\"b\":[$]}}>\n"),
  };
}

}  // namespace hostile
