#include <algorithm>
#include <array>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/catalogue/appendixEntries.hpp"
#include "tessera/check/catalogue/failureEntries.hpp"
#include "tessera/check/catalogue/markerEntries.hpp"
#include "tessera/check/catalogue/syntaxEntries.hpp"

namespace tessera::check::catalogue {
namespace {

template <std::size_t... sizes>
constexpr auto join(const std::array<CatalogueEntry, sizes>&... parts) {
  std::array<CatalogueEntry, (sizes + ...)> table{};
  auto* end = table.data();
  ((end = std::copy(parts.begin(), parts.end(), end)), ...);
  return table;
}

constexpr auto kCatalogue = join(kFailureEntries, kSyntaxEntries, kMarkerEntries, kAppendixEntries);

constexpr bool isInOrder() {
  for (std::size_t i = 0; i < kCatalogue.size(); ++i) {
    if (kCatalogue[i].kind != DiagnosticKind(i)) return false;
  }
  return kCatalogue.back().kind == DiagnosticKind::kSecondAppendixLine;
}
static_assert(isInOrder());

}  // namespace

std::span<const CatalogueEntry> catalogue() noexcept {
  return kCatalogue;
}

}  // namespace tessera::check::catalogue
