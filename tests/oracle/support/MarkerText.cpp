#include "oracle/support/MarkerText.hpp"

#include <array>
#include <string_view>

namespace quenlith::oracle {

namespace {

using Word = std::u16string_view;

// A leader, or an opener with its closer.
struct Comment {
  Word start;
  Word closer;
};
constexpr std::array<Comment, 18> kComments = {{{u"%", u""},
                                                {u"#", u""},
                                                {u"//", u""},
                                                {u"--", u""},
                                                {u";", u""},
                                                {u"!", u""},
                                                {u"%%", u""},
                                                {u"##", u""},
                                                {u"///", u""},
                                                {u"----", u""},
                                                {u"%%%", u""},
                                                {u" REM ", u""},
                                                {u"\trem\t", u""},
                                                {u"/*", u"*/"},
                                                {u"/**", u"*/"},
                                                {u"(*", u"**)"},
                                                {u"<!--", u"-->"},
                                                {u"{-", u"-}"}}};
constexpr std::array<Word, 4> kBlanks = {u" ", u"", u"  ", u"\t "};
constexpr std::array<Word, 7> kElements = {u"control", u"output", u"task", u"text",
                                           u"output",  u"text",   u"text"};
constexpr std::array<Word, 6> kTypes = {u":anchor", u":anchor", u":anchor",
                                        u"",        u":slider", u":Anchor"};
constexpr std::array<Word, 12> kIds = {
    u"",      u"#a",          u"#b",           u"#c1",          u"#\"two words\"",
    u"#\"\"", u"#\u00e9",     u"#\"\\u0041\"", u"#\"<@task>\"", u"#\"%%\\\\x\"",
    u"#a",    u"#\"\\ud800\""};
constexpr std::array<Word, 10> kData = {u"",
                                        u"",
                                        u"",
                                        u" {}",
                                        u" {\"format\":\"short\"}",
                                        u" {\"a\":1,\"b\":[true,null,2.5]}",
                                        u" { \"n\" : -3 , \"o\" : {\"x\":\"\\u00e9\"} }",
                                        u"\t{\"s\":\"<@output>\"}",
                                        u" {\"p\":\"%%\\\\\"}",
                                        u" {\"\u00e9\":\"\U0001F600\"}"};
// Ranges that are never valid. The last two are not ranges at all: the text is then not a marker.
constexpr std::array<Word, 8> kFixedRanges = {u" [0,18446744073709551615]",
                                              u" [18446744073709551615,18446744073709551615]",
                                              u" [1,99999999999999999999999]",
                                              u" [99999999999999999999999,2]",
                                              u" [0,0]",
                                              u" [18446744073709551616,18446744073709551617]",
                                              u" [-1,4]",
                                              u" [0,1.0]"};
constexpr std::array<Word, 25> kDamaged = {
    u"/* <@text:anchor#a>", u"<!-- <@output>", u"{-<@task#a>", u"%<@task#a", u"%<@tusk#a>",
    u"<@output>", u"/ <@output>", u"% <@ output>", u"#<@text:anchor#>", u"%<@task#a {\"x\":}>",
    u"%<@output [1 2]>", u"%<@Task#a>", u"%<@text:>", u"%<@output {\"a\":1} [0,1]>",
    u"%<@output{}>", u"# <@appendix>", u"%<@", u"%<@output#\"a>",
    // Markers only after "%%\" is replaced:
    u"%%\\<@output#made>", u"%%\\ <@task#a>", u"%<@text:anchor#\"a%%\\q\">",
    u"%<@output {\"s\":\"%%\\z\"}>",
    // Damaged or changed when "%%\" is replaced:
    u"%<@output {\"s\":\"%%\\\"\"}>", u"# <@task#\"%%\\\"a\">",
    u"%<@control {\"s\":\"%%\\n%%\\\\\"}>"};
constexpr std::array<Word, 26> kWords = {u"x = 1",
                                         u"y",
                                         u"return f(x)",
                                         u" ",
                                         u"  ",
                                         u"\t",
                                         u"%",
                                         u"%%\\",
                                         u"%%\\\\",
                                         u"%%%\\\\",
                                         u"#",
                                         u"//",
                                         u"<",
                                         u"@",
                                         u">",
                                         u"\\",
                                         u"\u00e9",
                                         u"\u6f22\u5b57",
                                         u"\U0001F600",
                                         u"abc",
                                         u"\"q\"",
                                         u"0",
                                         u"[1,2]",
                                         u"{\"a\":1}",
                                         u"some longer text",
                                         u"z"};

void appendHole(DraftText& draft, DigitHole& hole, std::size_t width) {
  hole = {draft.text.size(), width};
  draft.text.append(width, u'0');
}

void appendRangeHole(DraftText& draft, Random& random) {
  const std::size_t width = random.between(3, 4);
  const Word blank = random.oneIn(4) ? u" " : u"";
  RangeHole hole;
  draft.text.append(u" [").append(blank);
  appendHole(draft, hole.begin, width);
  draft.text.append(blank).append(u",").append(blank);
  appendHole(draft, hole.end, width);
  draft.text.append(blank).append(u"]");
  draft.holes.push_back(hole);
}

void appendRange(DraftText& draft, Random& random) {
  if (random.oneIn(12)) {
    draft.text += random.pick(kFixedRanges);
  } else if (!random.oneIn(3)) {
    appendRangeHole(draft, random);
  }
}

// Removes, inserts or replaces one code unit. Drops the holes, whose offsets may be wrong then.
void damage(DraftText& draft, Random& random) {
  constexpr Word kUnits = u"<@>#:[]{}\"\\%,. \u00e9\n";
  const std::size_t place = random.below(draft.text.size());
  const char16_t unit = kUnits[random.below(kUnits.size())];
  switch (random.below(3)) {
    case 0:
      draft.text.erase(place, 1);
      break;
    case 1:
      draft.text.insert(place, 1, unit);
      break;
    default:
      draft.text[place] = unit;
      break;
  }
  draft.holes.clear();
}

}  // namespace

void DraftText::append(const DraftText& other) {
  for (RangeHole hole : other.holes) {
    hole.begin.offset += text.size();
    hole.end.offset += text.size();
    holes.push_back(hole);
  }
  text += other.text;
}

DraftText randomMarker(Random& random) {
  DraftText draft;
  const Comment comment = random.pick(kComments);
  draft.text.append(comment.start).append(random.pick(kBlanks)).append(u"<@");
  const Word element = random.pick(kElements);
  draft.text.append(element);
  if (element == u"text" || random.oneIn(4)) draft.text += random.pick(kTypes);
  draft.text += random.pick(kIds);
  appendRange(draft, random);
  draft.text += random.pick(kData);
  if (random.oneIn(5)) draft.text += u' ';
  draft.text += u'>';
  if (!comment.closer.empty() && random.oneIn(2)) draft.text += u' ';
  draft.text += comment.closer;
  return draft;
}

DraftText randomDamagedMarker(Random& random) {
  if (!random.oneIn(3)) return {std::u16string(random.pick(kDamaged)), {}};
  DraftText draft = randomMarker(random);
  damage(draft, random);
  return draft;
}

std::u16string randomPlainText(Random& random, std::size_t words) {
  std::u16string text;
  for (std::size_t i = 0; i < words; ++i) {
    text += random.pick(kWords);
    if (random.oneIn(30)) text += static_cast<char16_t>(0xD800 + random.below(0x800));
  }
  return text;
}

}  // namespace quenlith::oracle
