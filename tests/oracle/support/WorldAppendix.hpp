#pragma once

#include "oracle/support/services.hpp"
#include "quenlith/shared/appendix/AppendixBuilder.hpp"

namespace quenlith::oracle {

/// The appendix service of a host, answered by a world.
class WorldAppendix final : public shared::appendix::AppendixBuilder {
 public:
  /// Borrows `serviceWorld`.
  explicit WorldAppendix(World& serviceWorld) : world(serviceWorld) {}

  void addEntry(const syntax::Marker&) override { world.note("addEntry"); }
  ustring build() const override {
    world.note("build");
    return {};
  }
  shared::appendix::AppendixEntry findEntry(const syntax::Marker& marker) const override {
    shared::appendix::AppendixEntry result{u"text that nobody reads", std::nullopt};
    const auto entry = world.findEntry(plainMarker(marker));
    if (entry) result.marker = syntax::Marker(entry->text);
    return result;
  }

 private:
  World& world;
};

}  // namespace quenlith::oracle
