#include "hostile/families.hpp"

namespace hostile {

namespace {

using fl::i18n::ustring;

ustring longRun(const ustring& before, char16_t unit, const ustring& after) {
  return before + ustring(100, unit) + after;
}

}  // namespace

// Block comments in all half-finished forms, and strings of several lines.
std::vector<Family> commentFamilies() {
  return {
      run("stars", u"", u'*'),
      run("dashes", u"", u'-'),
      run("parentheses", u"", u'('),
      repeated("half comments", u"", u"<!"),
      repeated("openers", u"", u"/*(*<!--{-"),
      repeated("closers", u"", u"*/*)-->-}"),
      repeated("openers before openings", u"", u"/*<@(*<@<!--<@{-<@"),
      repeated("openers without closers", u"", u"/*<@task>(*<@task>"),
      repeated("dashed openers without closers", u"", u"<!--<@task>{-<@task>"),
      repeated("half closers", u"", u"/*<@task>*<!--<@task>--"),
      repeated("closers of other comments", u"", u"/*<@task>--><!--<@task>*/"),
      repeated("long runs before openings", u"", longRun(u"", u'*', u"<@")),
      repeated("long dashes before openings", u"", longRun(u"<!", u'-', u"<@task>")),
      repeated("long half closers", u"", longRun(u"/*<@task>", u'*', u"")),
      repeated("long blanks before half closers", u"", longRun(u"/*<@task>", u' ', u"*")),
      repeated("block comments", u"", u"/*<@task>*/<!--<@text>-->(*<@output>*){-<@task>-}"),
      repeated("block comments on lines", u"", u"x /* <@text:anchor#t$> */\n"),
      repeated("block comments without closers in strings", u"",
               u"/*<@task {\"a\":\"/*<@task#\"b\">"),
      repeated("closers in strings", u"", u"/*<@task#\">*/\">"),
      run("one run of stars before an opening", u"/", u'*', u"<@task>"),
      run("one run of stars after an opening", u"/*<@task>", u'*'),
      run("one run of dashes before an opening", u"<!", u'-', u"<@task>"),
      run("one run of dashes after an opening", u"<!--<@task>", u'-'),
      repeated("comments that are not closed", u"", u"/* <@text:anchor#t$>\n"),
      repeated("comments that only end", u"", u"// <@text:anchor#t$> */\n"),
      repeated("a line of comments that only end", u"", u"// <@text:anchor#t$> */ "),
      repeated("strings of several lines", u"", u"'''\n# <@text:anchor#t$>\n'''\n"),
      repeated("a string of many lines", u"'''\n", u"# <@text:anchor#t$>\n", u"'''\n"),
      repeated("strings on one line", u"", u"'\\'' \"\\\"\" `\\``"),
  };
}

}  // namespace hostile
