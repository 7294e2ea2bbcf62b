#include "tessera/check/scan/SimilarNames.hpp"

#include "tessera/spelling/areSimilar.hpp"

namespace tessera::check::scan {
namespace {

using spelling::areSimilar;
using spelling::kMaxNameUnits;
using spelling::lowered;

constexpr std::size_t kMaxPerKey = 4;

/// Calls `use` with the hash of each text that results from `name` without one of its units, and of
/// `name` itself. Each hash takes constant time: it is a combination of those of the two parts.
template <class Use>
void forEachKey(std::u16string_view name, Use use) {
  constexpr std::uint64_t kBase = 0x9E3779B97F4A7C15;
  std::vector<std::uint64_t> tails(name.size() + 1, 0);
  std::vector<std::uint64_t> powers(name.size() + 1, 1);
  for (std::size_t i = 0; i < name.size(); ++i) powers[i + 1] = powers[i] * kBase;
  for (std::size_t i = name.size(); i > 0; --i) {
    tails[i - 1] = (name[i - 1] + 1U) * powers[name.size() - i] + tails[i];
  }
  use(tails[0]);
  std::uint64_t head = 0;
  for (std::size_t i = 0; i < name.size(); ++i) {
    use(head * powers[name.size() - i - 1] + tails[i + 1]);
    head = head * kBase + (name[i] + 1U);
  }
}

}  // namespace

void SimilarNames::add(std::u16string_view name, std::size_t number) {
  entries.push_back({std::u16string(name), number});
  const auto insert = [this](std::uint64_t key) {
    std::vector<std::size_t>& found = index[key];
    const std::size_t entry = entries.size() - 1;
    const bool isThere = !found.empty() && found.back() == entry;
    if (!isThere && found.size() < kMaxPerKey) found.push_back(entry);
  };
  const std::u16string lower = lowered(name);
  if (lower.size() > kMaxNameUnits) {
    insert(hashing::KeyedHasher()(lower));
  } else {
    forEachKey(lower, insert);
  }
}

std::optional<std::size_t> SimilarNames::find(std::u16string_view name) const {
  std::size_t best = entries.size();
  const auto look = [&](std::uint64_t key) {
    const auto found = index.find(key);
    if (found == index.end()) return;
    for (const std::size_t entry : found->second) {
      if (entry < best && areSimilar(entries[entry].name, name)) best = entry;
    }
  };
  const std::u16string lower = lowered(name);
  if (lower.size() > kMaxNameUnits) {
    look(hashing::KeyedHasher()(lower));
  } else {
    forEachKey(lower, look);
  }
  if (best == entries.size()) return std::nullopt;
  return entries[best].number;
}

}  // namespace tessera::check::scan
