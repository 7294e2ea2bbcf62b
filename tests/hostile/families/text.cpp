#include "hostile/families.hpp"

namespace hostile {

// Text without markers: lines, characters, halves of characters.
std::vector<Family> textFamilies() {
  return {
      run("empty lines", u"", u'\n'),
      repeated("plain lines", u"", u"x = 1\n"),
      repeated("numbered lines", u"", u"x = $\n"),
      run("a long line", u"", u'x'),
      repeated("a line of words", u"", u"word "),
      run("a line of blanks", u"", u' '),
      run("a line of tabs", u"", u'\t'),
      repeated("tabs before a marker", u"", u"\t\t\t\t\t\t\t\t", u"# <@output#a [0,1]>\n"),
      run("carriage returns", u"", u'\r'),
      repeated("lines that end in CRLF", u"", u"x\r\n"),
      run("null characters", u"", u'\0'),
      run("escape characters", u"", u'\x1B'),
      repeated("escape sequences", u"", u"\x1B[31m\x1B]0;t\a"),
      run("high surrogates", u"", u'\xD800'),
      run("low surrogates", u"", u'\xDC00'),
      repeated("surrogates in the wrong order", u"", u"\xDC00\xD800"),
      repeated("surrogates around markers", u"", u"\xDC00# <@text:anchor#\xD800>\xDC00\n"),
      repeated("characters of two units", u"", u"\U0001F600"),
      run("combining marks", u"a", u'\x0301'),
      repeated("joined emoji", u"", u"\U0001F469\u200D"),
      repeated("emoji joined before markers", u"", u"\U0001F469\u200D# <@output#a [0,2]>"),
      run("overrides of the direction", u"", u'\x202E'),
      run("jamo of one cluster", u"", u'\x1112'),
      run("percent signs", u"", u'%'),
      repeated("escaped leaders", u"", u"%%\\"),
      repeated("escaped leaders on many lines", u"", u"%%\\ <@task#$>\n"),
      repeated("escaped leaders before a marker", u"", u"%%\\x", u"# <@output#a [0,1]>\n"),
      repeated("escaped leaders and markers", u"", u"%%\\x# <@output>"),
      run("backslashes", u"", u'\\'),
      repeated("HTML", u"", u"<script>&\"'</script>\n"),
      repeated("quotes", u"", u"\"'`\"\"\"'''\n"),
  };
}

}  // namespace hostile
