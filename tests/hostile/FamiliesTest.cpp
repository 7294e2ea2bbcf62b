#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

#include "hostile/families.hpp"

namespace hostile {
namespace {

const Family& familyOf(std::string_view name) {
  for (const Family& family : families()) {
    if (family.name == name) return family;
  }
  throw std::invalid_argument(std::string(name));
}

TEST(HostileFamilies, HaveDifferentNames) {
  std::set<std::string> names;
  for (const Family& family : families()) {
    EXPECT_TRUE(names.insert(family.name).second) << family.name;
  }
  EXPECT_GE(names.size(), 80U);
}

TEST(HostileFamilies, HaveAboutTheSizeThatIsWanted) {
  constexpr std::size_t kSize = 50'000;
  for (const Family& family : families()) {
    const std::size_t size = family.make(kSize).size();
    EXPECT_GT(size, kSize * 7 / 10) << family.name;
    EXPECT_LT(size, kSize * 12 / 10) << family.name;
  }
}

TEST(HostileFamilies, NumberTheirParts) {
  const Family family = repeated("", u"head ", u"$ ^,", u"tail");
  EXPECT_EQ(family.make(3 * 18),
            u"head 10000000 10000003,10000001 10000002,10000002 10000001,tail");
}

#ifdef __GLIBCXX__
TEST(HostileFamilies, CollidingIdsHaveOneStandardHash) {
  const fl::i18n::ustring text = familyOf("colliding ids of anchors").make(20'000);
  std::set<fl::i18n::ustring> ids;
  std::set<std::size_t> hashes;
  for (std::size_t begin = text.find(u"anchor#"); begin != text.npos;
       begin = text.find(u"anchor#", begin + 1)) {
    const std::size_t from = begin + 7;
    const auto id = text.substr(from, text.find(u'>', from) - from);
    ids.insert(id);
    hashes.insert(std::hash<fl::i18n::ustring>()(id));
  }
  EXPECT_GT(ids.size(), 500U);
  EXPECT_EQ(hashes.size(), 1U);
}
#endif

}  // namespace
}  // namespace hostile
