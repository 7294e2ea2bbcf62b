#include <gtest/gtest.h>

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

// The more ids are in one bucket, the longer each search in it takes.
TEST_F(CheckWork, IsTheSameForIdsWhoseStandardHashesCollide) {
  const std::vector<std::string> colliding = collidingIds();
  const std::vector<std::string> ordinary = ordinaryIds(colliding.size());
  for (const std::string& form : kComparedIds) {
    const std::uint64_t expected = workOf(sourceOf(form, ordinary));
    EXPECT_LT(workOf(sourceOf(form, colliding)), expected * 5 / 4) << form;
  }
}

// Nothing ends the word after "<@", or what is tried in its place, before the end of the line.
TEST_F(CheckWork, IsLinearForManyDamagedOpeningsOnALine) {
  for (const char* opening : {"//<@", "//<@@", "//<@appendix", "/*<@x", "//<appendix",
                              "//@appendix", "//<output [", "//<@text:anchor#/", "//<@task fit",
                              "//<@text:anchor#a>,", "*/<@text#a>", "Rem <@text#a>"}) {
    std::string half;
    for (std::size_t i = 0; i < kParts / 2; ++i) half += opening;
    EXPECT_LT(workOf(half + half), workOf(half) * 23 / 10 + 10000) << opening;
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
