#include "RandomMarkers.hpp"

#include <array>
#include <string_view>

namespace quenlith::oracle {

namespace {

using Text = std::u16string_view;

constexpr std::array<Text, 28> kLeaders{
    u"#",   u"%",    u"//",    u"--",    u";",     u"!",    u"##", u"%%%", u"///", u";;",
    u"!!",  u"----", u"REM ",  u"rem\t", u"/",     u"-",    u"",   u"%#",  u"#x",  u"REM",
    u"REM", u"rem",  u"xREM ", u".rem ", u"(rem ", u"Rem ", u"*",  u"<!-"};
// Openers and closers: what comes before or after the run, and its character.
constexpr std::array<std::array<Text, 3>, 4> kBlocks{
    {{u"/", u"*", u"/"}, {u"(", u"*", u")"}, {u"<!", u"-", u">"}, {u"{", u"-", u"}"}}};
constexpr std::array<Text, 14> kElements{u"control", u"output", u"task",   u"text",   u"task",
                                         u"output",  u"text",   u"Task",   u"widget", u"appendix",
                                         u"tasks",   u"",       u"\u00FC", u"t"};
constexpr std::array<Text, 6> kTypes{u"anchor", u"slider", u"a.b-c_9", u"\u0080", u"", u"A"};
constexpr std::array<Text, 6> kIds{u"t1", u"t2", u"a.b-c_9", u"\u20AC", u"", u"-"};
constexpr std::array<Text, 12> kNumbers{u"0",
                                        u"7",
                                        u"16",
                                        u"007",
                                        u"18446744073709551615",
                                        u"18446744073709551616",
                                        u"99999999999999999999999",
                                        u"1844674407370955161",
                                        u"-1",
                                        u"+1",
                                        u"",
                                        u"1.0"};
constexpr std::array<Text, 28> kJsonNumbers{u"0",
                                            u"0e400",
                                            u"-0.00E+999",
                                            u"-0",
                                            u"1",
                                            u"-1",
                                            u"9223372036854775807",
                                            u"9223372036854775808",
                                            u"-9223372036854775808",
                                            u"-9223372036854775809",
                                            u"18446744073709551615",
                                            u"18446744073709551616",
                                            u"1.0",
                                            u"-0.0",
                                            u"1.5e3",
                                            u"1E-7",
                                            u"1e21",
                                            u"123456789012345678901.5",
                                            u"1e308",
                                            u"1.7976931348623158e308",
                                            u"1e309",
                                            u"-1e309",
                                            u"5e-324",
                                            u"1e-400",
                                            u"01",
                                            u"1.",
                                            u".5",
                                            u"+1"};
constexpr std::array<Text, 20> kStringParts{
    u"a",       u"b c",     u"\\n",    u"\\\"",   u"\\\\",   u"\\/",        u"\\u0041",
    u"\\ud83d", u"\\ude00", u"\xD83D", u"\xDE00", u"\u00E9", u"\U0001F600", u"<@",
    u">",       u"{",       u"}",      u"\\x",    u"\x01",   u"\u007F"};
constexpr Text kDamages = u"<@>{}[]:#,\"\\ \t%/-;!*()0aMm\n\r\x1F\u00A0";

}  // namespace

template <typename List>
std::u16string RandomMarkers::pick(const List& list) {
  return std::u16string(list[below(list.size())]);
}

std::u16string RandomMarkers::text() {
  std::u16string result;
  for (std::size_t count = 1 + below(3); count > 0; --count) {
    result += oneIn(3) ? u"x = 1 " : u"";
    std::u16string next = marker();
    for (; oneIn(3); damage(next)) {
    }
    result += next;
    result += oneIn(4) ? u"\n" : u"";
  }
  return result;
}

void RandomMarkers::damage(std::u16string& text) {
  const std::size_t at = below(text.size() + 1);
  const char16_t unit = kDamages[below(kDamages.size())];
  switch (below(4)) {
    case 0:
      text.insert(at, 1, unit);
      break;
    case 1:
      text.resize(at);
      break;
    case 2:
      text.erase(at, 1);
      break;
    default:
      text.replace(at, at < text.size() ? 1 : 0, 1, unit);
  }
}

std::u16string RandomMarkers::blanks() {
  return oneIn(3) ? (oneIn(2) ? u" \t" : u"   ") : (oneIn(2) ? u"" : u" ");
}

std::u16string RandomMarkers::marker() {
  return oneIn(2) ? inLineComment() : inBlockComment();
}

std::u16string RandomMarkers::inLineComment() {
  return pick(kLeaders) + blanks() + body();
}

// Sometimes the closer is missing, or is that of another block comment.
std::u16string RandomMarkers::inBlockComment() {
  const auto& opened = kBlocks[below(kBlocks.size())];
  const auto& closed = oneIn(15) ? kBlocks[below(kBlocks.size())] : opened;
  const std::u16string opener = std::u16string(opened[0]) + run(opened[1][0]);
  const std::u16string closer = oneIn(15) ? u"" : run(closed[1][0]) + std::u16string(closed[2]);
  return opener + blanks() + body() + blanks() + closer;
}

// Two characters, or one, or up to six.
std::u16string RandomMarkers::run(char16_t unit) {
  const std::size_t length = oneIn(3) ? 1 + below(6) : (oneIn(2) ? 1 : 2);
  return std::u16string(length, unit);
}

std::u16string RandomMarkers::body() {
  std::u16string result = u"<@" + pick(kElements);
  if (oneIn(3)) {
    result += u":" + pick(kTypes);
  }
  if (!oneIn(3)) {
    result += u"#" + id();
  }
  if (oneIn(3)) {
    result += (oneIn(10) ? u"" : u" ") + range();
  }
  if (oneIn(2)) {
    result += (oneIn(10) ? u"" : u" ") + blanks() + (oneIn(10) ? nested() : object(3));
  }
  return result + blanks() + u">";
}

std::u16string RandomMarkers::id() {
  return oneIn(2) ? pick(kIds) : string();
}

std::u16string RandomMarkers::range() {
  return u"[" + blanks() + pick(kNumbers) + blanks() + u"," + blanks() + pick(kNumbers) +
         (oneIn(15) ? u")" : u"]");
}

// Nested from one level less to two levels more than allowed.
std::u16string RandomMarkers::nested() {
  const std::size_t depth = 62 + below(3);
  return u"{\"a\":" + std::u16string(depth, u'[') + (oneIn(2) ? u"{}" : u"1") +
         std::u16string(depth, u']') + u"}";
}

std::u16string RandomMarkers::object(int depth) {
  std::u16string result = u"{";
  for (std::size_t count = below(3); count > 0; --count) {
    result += blanks() + (oneIn(3) ? string() : u"\"k\"") + blanks() + u":" + blanks() +
              value(depth - 1) + blanks() + (count > 1 ? u"," : u"");
  }
  return result + u"}";
}

std::u16string RandomMarkers::array(int depth) {
  std::u16string result = u"[";
  for (std::size_t count = below(3); count > 0; --count) {
    result += blanks() + value(depth - 1) + (count > 1 ? u"," : u"");
  }
  return result + blanks() + u"]";
}

std::u16string RandomMarkers::value(int depth) {
  constexpr std::array<Text, 4> kWords{u"true", u"false", u"null", u"nul"};
  switch (below(depth > 0 ? 6 : 4)) {
    case 0:
      return oneIn(4) ? pick(kWords) : u"true";
    case 1:
      return number();
    case 2:
    case 3:
      return string();
    case 4:
      return array(depth);
    default:
      return object(depth);
  }
}

std::u16string RandomMarkers::number() {
  if (oneIn(2)) {
    return pick(kJsonNumbers);
  }
  std::u16string digits = oneIn(2) ? u"-1" : u"2";
  for (std::size_t count = below(25); count > 0; --count) {
    digits += static_cast<char16_t>(u'0' + below(10));
  }
  return oneIn(2) ? digits : digits + u".25";
}

// Sometimes contains a whole marker, including quotes.
std::u16string RandomMarkers::string() {
  std::u16string result = u"\"";
  for (std::size_t count = below(4); count > 0; --count) {
    result += oneIn(8) ? u"a" : pick(kStringParts);
  }
  if (oneIn(6)) {
    result += oneIn(2) ? u"# <@task#in>" : marker();
  }
  return result + u"\"";
}

}  // namespace quenlith::oracle
