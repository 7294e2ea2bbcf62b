#include "oracle/task/taskLines.hpp"

#include <array>
#include <string_view>

#include "oracle/support/MarkerText.hpp"
#include "oracle/support/randomLine.hpp"

namespace quenlith::oracle {

namespace {

using Word = std::u16string_view;

constexpr std::array<Word, 6> kIds = {u"", u"a", u"b", u"c", u"\u00e9", u"b"};
constexpr std::array<Word, 3> kTaskData = {u"", u"", u" {\"view\":\"v\"}"};
constexpr std::array<Word, 5> kStarts = {u"", u"x = 1  ", u"# <@output#o> ", u"\u6f22 ",
                                         u"# <@control:slider#c> "};
constexpr std::array<Word, 5> kEnds = {u"", u" # end", u"", u" %<@output [0,1]>", u"\t"};
constexpr std::array<Word, 4> kAnchors = {u" %<@text:anchor#top>", u" %<@text:anchor>",
                                          u" %<@text:anchor#\"t \u00e9\">", u" %<@text:anchor#a>"};
// The line as passed in and the normalised line have different markers.
constexpr std::array<Word, 5> kDisagreeing = {
    u"%%\\<@task#a>", u"x %%\\ <@task#b> ", u"# <@task#\"%%\\\"a\">",
    u"# <@task#a {\"s\":\"%%\\\"\"}>", u"%%\\<@text:anchor#t> # <@task#a>"};
constexpr std::array<Word, 8> kPlain = {u"x = 1",  u"",     u"return 2",        u"  ",
                                        u"\u6f22", u"%%\\", u"# <@output#o> y", u"# <@tusk#a>"};
constexpr std::array<Word, 11> kKeys = {
    u"taskClassDefFile", u"uniqueId",     u"text",     u"run",  u"autorun", u"collapsed",
    u"outputs",          u"variablesMap", u"appState", u"view", u"extra"};
constexpr std::array<Word, 10> kValues = {u"\"s\"",
                                          u"\"true\"",
                                          u"\"\u00e9\u6f22\U0001F600\"",
                                          u"true",
                                          u"null",
                                          u"-5",
                                          u"2.5",
                                          u"18446744073709551615",
                                          u"[1,\"x\"]",
                                          u"{\"uniqueId\":\"inner\"}"};

ustring taskMarker(Random& random, Word id) {
  ustring text = u"# <@task";
  if (!id.empty() || random.oneIn(2)) text.append(u"#\"").append(id).append(u"\"");
  return text.append(random.pick(kTaskData)).append(u">");
}

ustring taskMarkers(Random& random) {
  const Word id = random.pick(kIds);
  ustring first = taskMarker(random, id);
  const std::size_t shape = random.below(100);
  if (shape < 52) return first;
  const ustring gap = random.oneIn(2) ? u" " : u" y ";
  if (shape < 78) return first + gap + first;
  if (shape < 82) return first + gap + first + gap + first;
  if (shape < 90) return first + gap + taskMarker(random, id);
  return first + gap + taskMarker(random, random.pick(kIds));
}

}  // namespace

ustring randomTaskLine(Random& random) {
  const std::size_t shape = random.below(100);
  if (shape < 22) return ustring(random.pick(kPlain));
  if (shape < 28) return ustring(random.pick(kDisagreeing));
  if (shape < 32) return randomLine(random);
  ustring line;
  if (random.oneIn(2)) line += random.pick(kStarts);
  if (random.oneIn(12)) line += random.pick(kAnchors);
  line += taskMarkers(random);
  if (random.oneIn(4)) line += random.pick(kAnchors);
  return line.append(random.pick(kEnds));
}

ustring randomBlock(Random& random) {
  constexpr std::array<std::size_t, 8> kCounts = {2, 2, 2, 2, 2, 0, 1, 3};
  ustring block = u"first line\n";
  for (const Word id : kIds) {
    const std::size_t count = random.pick(kCounts);
    for (std::size_t i = 0; i < count; ++i) block += taskMarker(random, id) + u"\n";
  }
  if (random.oneIn(3)) block += randomTaskLine(random);
  return block;
}

std::vector<ustring> randomAppendix(Random& random) {
  std::vector<ustring> entries;
  for (const Word id : kIds) {
    if (random.oneIn(3)) continue;
    ustring text = u"%<@task#\"" + ustring(id) + u"\" {\"key\":0";
    for (const Word key : kKeys) {
      if (random.oneIn(4)) continue;
      text.append(u",\"").append(key).append(u"\":").append(random.pick(kValues));
    }
    entries.push_back(text + u"}>");
  }
  return entries;
}

}  // namespace quenlith::oracle
