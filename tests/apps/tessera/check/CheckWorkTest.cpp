#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "support/CountedWork.hpp"
#include "tessera/check/HeldFiles.hpp"
#include "tessera/check/checkFile.hpp"
#include "tessera/host/ServiceHost.hpp"
#include "tessera/session/FileParser.hpp"

namespace {

using tessera::check::checkFile;

constexpr std::size_t kParts = 4000;

// A text of `count` similar parts.
struct Hostile {
  std::string name;
  std::function<std::string(std::size_t count)> make;
};

// `head`, then `part` for each number, which replaces "%" in it, then `tail`.
Hostile numbered(const std::string& name, const std::string& head, const std::string& part,
                 const std::string& tail = "") {
  return {name, [head, part, tail](std::size_t count) {
            std::string text = head;
            for (std::size_t i = 0; i < count; ++i) {
              for (const char unit : part) {
                if (unit == '%') {
                  text += std::to_string(100000 + i);
                } else {
                  text += unit;
                }
              }
            }
            return text + tail;
          }};
}

const std::vector<Hostile> kHostile{
    // Task markers: groups of one id, pairs, ids that resemble each other, tasks within tasks.
    numbered("one id", "", "# <@task#a>\n"),
    numbered("no id", "", "# <@task>\n"),
    numbered("no partners", "", "# <@task#t%>\n"),
    numbered("ids of which each resembles many", "", "# <@task#%x>\n# <@task#x%>\n"),
    numbered("pairs without entries", "", "# <@task#t%>\nx\n# <@task#t%>\n"),
    numbered("tasks in a task", "# <@task#a>\n", "# <@task#t%>\n# <@task#t%>\n", "# <@task#a>\n"),
    numbered("empty tasks", "", "# <@task#t%>\n\n# <@task#t%>\n"),
    numbered("ignored task markers", "", "# <@task#t%> # <@task#u%>\nx\n# <@task#t%>\n"),
    numbered("markers cut off in the id", "# <@task#t1>\n", "# <@task#t%\n"),
    numbered("partners that end early", "", "# <@task#t%>x\n# <@task#t%x>\n"),
    // Text like markers, each with a search for its repair.
    numbered("misspelt elements", "", "# <@tsak#t%>\n"),
    numbered("misspelt elements with partners", "", "# <@tsak#t%>\n# <@task#t%>\n"),
    numbered("no leaders", "", "x <@text:anchor#t%>\n"),
    numbered("bad ranges", "", "# <@output#t% [0,5}>\n"),
    numbered("bad data", "", "# <@output#t% {\"a\":1,}>\n"),
    numbered("damaged openings", "", "# @text:anchor#t%> # <text:anchor#u%>\n"),
    numbered("lines that go on", "", "# <@output#t% [0,1]\n#  {\"a\":1}>\n"),
    numbered("comments that are not closed", "", "/* <@text:anchor#t%>\n"),
    numbered("comments that only end", "", "// <@text:anchor#t%> */\n"),
    // Strings.
    numbered("strings of several lines", "", "'''\n# <@text:anchor#t%>\n'''\n"),
    numbered("a string of many lines", "'''\n", "# <@text:anchor#t%>\n", "'''\n"),
    // Anchors and ranges.
    numbered("one anchor", "", "# <@text:anchor#a>\n"),
    numbered("hidden ranges", "", "xyz # <@output#t% [0,2]> # <@output#u% [1,3]>\n"),
    // The appendix.
    numbered("entries without markers", "# <@appendix>\n", "# <@task#t% {\"text\":\"x\"}>\n"),
    numbered("equal entries", "# <@appendix>\n", "# <@task#t {\"text\":\"x\"}>\n"),
    numbered("damaged entries", "# <@appendix>\n", "# <@task#t% {\"text\":x}>\n"),
    numbered("entries of similar ids", "# <@appendix>\n", "# <@task#%x {}>\n# <@task#x% {}>\n"),
    numbered("text in the appendix", "# <@appendix>\n", "x\n"),
    numbered("settings that do not exist", "# <@appendix>\n# <@task#t {\"text\":\"\"", ",\"t%\":1",
             "}>\n"),
    numbered("an appendix line that is damaged", "# <@apendix>\n", "# <@task#t%>\n"),
    // One line.
    numbered("a line of task markers", "", "# <@task#t%> "),
    numbered("a line of anchors", "", "# <@text:anchor#t%> "),
    numbered("a line of ranges", std::string(200000, 'x'), " # <@output#t [0,%]>"),
    numbered("a line of openings", "", "<@"),
    numbered("a line of openings with leaders", "", "# <@"),
    numbered("a line of halves", "", "@ < "),
    numbered("a line of damaged openings", "", "# @text:anchor#t%> "),
    numbered("a line of misspelt elements", "", "# <@tsak#t%> "),
    numbered("a line of unclosed markers", "", "# <@text:anchor#t% "),
    numbered("a line of bad data", "", "# <@output {\"a\": "),
    numbered("a line of comments that only end", "", "// <@text:anchor#t%> */ "),
    numbered("a line of early ends", "", "# <@text:anchor#t%>. "),
    numbered("a line of brackets", "# <@output", " [0,}"),
    numbered("a line of quotes", "# <@output#a {", "\"a\""),
    numbered("a line of blanks", "# <@text:anchor#a", "                ", "x>"),
    numbered("a long id, cut off", "# <@text:anchor#", "a%"),
    numbered("a long element", "# <@", "task%", "#a>"),
};

class CheckWork : public testing::Test {
 protected:
  CheckWork()
      : host({}, tessera::host::Pieces::kKept),
        session(host.snippetParsers(), nullptr, nullptr),
        parser(session, host.appendix(), nullptr) {}

  std::uint64_t workOf(const std::string& text) {
    auto file = parser.parse("f.py", tessera::source::decodeSource("f.py", text));
    const std::uint64_t before = quenlith::test::countedWork();
    checkFile("f.py", std::move(file), [](const quenlith::syntax::Marker&) { return true; });
    return quenlith::test::countedWork() - before;
  }

  tessera::host::ServiceHost host;
  tessera::session::SnippetSession session;
  tessera::session::FileParser parser;
};

// The forms of a source in which ids are compared, "%" is the id.
const std::string kComparedIds[] = {
    "# <@task#%>\n", "# <@task#%>\nx\n# <@task#%>\n", "# <@task#o>\nx\n# <@task#%>\n# <@task#o>\n",
    "# <@tsak#%>\n", "# <@text:anchor#%>\n",
};

// Returns `form` for each id.
std::string sourceOf(const std::string& form, const std::vector<std::string>& ids) {
  std::string text;
  for (const std::string& id : ids) {
    for (const char unit : form) {
      if (unit == '%') {
        text += id;
      } else {
        text += unit;
      }
    }
  }
  return text;
}

// Returns `count` ids in ascending order.
std::vector<std::string> ordinaryIds(std::size_t count) {
  std::vector<std::string> ids;
  for (std::size_t i = 0; i < count; ++i) ids.push_back(std::to_string(10000000 + i));
  return ids;
}

// Returns as many ids as a table of the standard library has buckets, whose standard hashes are all
// in one bucket of it.
std::vector<std::string> collidingIds() {
  std::unordered_set<std::size_t> table;
  while (table.size() < kParts / 4 || table.size() < table.bucket_count())
    table.insert(table.size());
  std::vector<std::string> ids;
  for (std::size_t number = 10000000; ids.size() < table.bucket_count(); ++number) {
    std::string id = std::to_string(number);
    const auto hash = std::hash<std::u16string>()(fl::i18n::utf8_to_ustring(id));
    if (hash % table.bucket_count() == 0) ids.push_back(std::move(id));
  }
  return ids;
}

// Twice the text may take at most 2.3 times the work: places are sorted.
TEST_F(CheckWork, IsLinear) {
  for (const auto& [name, make] : kHostile) {
    const std::uint64_t half = workOf(make(kParts / 2));
    const std::uint64_t whole = workOf(make(kParts));
    EXPECT_GT(whole, 0U) << name;
    EXPECT_LT(whole, half * 23 / 10 + 10000) << name;
  }
}

// The more ids are in one bucket, the longer each search in it takes.
TEST_F(CheckWork, IsTheSameForIdsWhoseStandardHashesCollide) {
  const std::vector<std::string> colliding = collidingIds();
  const std::vector<std::string> ordinary = ordinaryIds(colliding.size());
  for (const std::string& form : kComparedIds) {
    const std::uint64_t expected = workOf(sourceOf(form, ordinary));
    EXPECT_LT(workOf(sourceOf(form, colliding)), expected * 5 / 4) << form;
  }
}

// Each file has one unpaired marker.
std::uint64_t workOfFiles(const std::vector<std::string>& ids) {
  std::vector<tessera::check::catalogue::CheckedFile> files;
  for (const std::string& id : ids) {
    files.emplace_back();
    files.back().diagnostics.emplace_back();
    files.back().diagnostics.back().unpairedTask = fl::i18n::utf8_to_ustring(id);
  }
  std::size_t taken = 0;
  const std::uint64_t before = quenlith::test::countedWork();
  tessera::check::HeldFiles held([&taken](const auto& file) { taken += file.diagnostics.size(); });
  for (auto& file : files) held.add(std::move(file));
  held.finish();
  EXPECT_EQ(taken, ids.size());
  return quenlith::test::countedWork() - before;
}

TEST(HeldFilesWork, IsLinear) {
  const auto half = workOfFiles(ordinaryIds(kParts / 2));
  EXPECT_LT(workOfFiles(ordinaryIds(kParts)), half * 23 / 10 + 10000);
  const std::vector<std::string> one(kParts, "a");
  EXPECT_LT(workOfFiles(one),
            workOfFiles({one.begin(), one.begin() + kParts / 2}) * 23 / 10 + 10000);
}

TEST(HeldFilesWork, IsTheSameForIdsWhoseStandardHashesCollide) {
  const std::vector<std::string> colliding = collidingIds();
  EXPECT_LT(workOfFiles(colliding), workOfFiles(ordinaryIds(colliding.size())) * 5 / 4);
}

}  // namespace
