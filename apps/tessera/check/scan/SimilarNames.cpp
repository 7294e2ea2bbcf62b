#include "tessera/check/scan/SimilarNames.hpp"

#include "tessera/hashing/KeyedMap.hpp"
#include "tessera/spelling/areSimilar.hpp"

namespace tessera::check::scan {
namespace {

using spelling::areSimilar;
using spelling::kMaxNameUnits;
using spelling::lowered;

/// Returns how many keys a name has, at most.
std::size_t keyCount(std::u16string_view name) {
  return name.size() > kMaxNameUnits ? 1 : name.size() + 1;
}

/// Calls `use` with the hash of each text that results from `name` without one of its units, and of
/// `name` itself. Each hash takes constant time: it is a combination of those of the two parts.
template <class Use>
void forEachDeletion(std::u16string_view name, Use use) {
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

/// Calls `use` with each key of a name; those of names with another case are the same.
template <class Use>
void forEachKey(std::u16string_view name, Use use) {
  const std::u16string lower = lowered(name);
  if (lower.size() > kMaxNameUnits) {
    use(hashing::KeyedHasher()(lower));
  } else {
    forEachDeletion(lower, use);
  }
}

}  // namespace

void SimilarNames::add(std::u16string_view name, std::size_t number) {
  entries.push_back({std::u16string(name), number});
}

std::optional<std::size_t> SimilarNames::find(std::u16string_view name) const {
  indexNames();
  std::size_t best = entries.size();
  forEachKey(name, [&](std::uint64_t key) {
    index.forEach(key, [&](std::size_t entry) {
      if (entry < best && areSimilar(entries[entry].name, name)) best = entry;
    });
  });
  if (best == entries.size()) return std::nullopt;
  return entries[best].number;
}

void SimilarNames::indexNames() const {
  if (indexedCount == 0) {
    std::size_t count = 0;
    for (const Entry& entry : entries) count += keyCount(entry.name);
    index.reserve(count);
  }
  for (; indexedCount < entries.size(); ++indexedCount) {
    forEachKey(entries[indexedCount].name,
               [this](std::uint64_t key) { index.add(key, indexedCount); });
  }
}

}  // namespace tessera::check::scan
