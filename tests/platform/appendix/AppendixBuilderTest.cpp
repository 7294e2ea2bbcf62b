#include "quenlith/shared/appendix/AppendixBuilder.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace {

using quenlith::shared::appendix::AppendixBuilder;
using quenlith::shared::appendix::AppendixEntry;

TEST(AppendixBuilder, DeclaresItsInterfaceName) {
  EXPECT_EQ(us_service_interface_iid<AppendixBuilder>(),
            "quenlith::shared::appendix::AppendixBuilder");
}

TEST(AppendixBuilder, AnEntryIsEmptyAtFirst) {
  const AppendixEntry entry;
  EXPECT_TRUE(entry.text.empty());
  EXPECT_FALSE(entry.marker.has_value());
}

/// Tells which of its operations was called.
class Calls final : public AppendixBuilder {
 public:
  void addEntry(const quenlith::syntax::Marker&) override { last = 1; }
  fl::i18n::ustring build() const override {
    last = 2;
    return {};
  }
  AppendixEntry findEntry(const quenlith::syntax::Marker&) const override {
    last = 3;
    return {};
  }
  mutable int last = 0;
};

#if defined(__GXX_ABI_VERSION)
// Others call the operation by its place in the table, of which the destructor takes the
// first two on this ABI.
TEST(AppendixBuilder, FindingAnEntryIsTheLastOfItsVirtualOperations) {
  Calls calls;
  AppendixBuilder& builder = calls;
  const auto find = &AppendixBuilder::findEntry;
  std::uintptr_t place[2];
  static_assert(sizeof find == sizeof place);
  std::memcpy(place, &find, sizeof place);
  EXPECT_EQ((place[0] - 1) / sizeof(void*), 4u);
  (builder.*find)(quenlith::syntax::Marker(u"task"));
  EXPECT_EQ(calls.last, 3);
}
#endif

}  // namespace
