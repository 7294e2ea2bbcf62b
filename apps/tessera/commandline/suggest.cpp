#include "tessera/commandline/suggest.hpp"

#include <algorithm>

#include "fl/i18n/ustring.hpp"
#include "tessera/spelling/areSimilar.hpp"

namespace tessera::commandline {
namespace {

// Shorter words resemble too many names. The dashes of an option are not counted.
constexpr std::size_t kMinSuggested = 2;

std::string_view withoutDashes(std::string_view word) {
  return word.substr(std::min(word.find_first_not_of('-'), word.size()));
}

}  // namespace

std::string suggest(std::string_view word, const std::vector<std::string_view>& names) {
  if (withoutDashes(word).size() < kMinSuggested) return {};
  const fl::i18n::ustring text = fl::i18n::utf8_to_ustring(word);
  auto found = std::ranges::find_if(names, [&text](std::string_view name) {
    return spelling::areSimilar(text, fl::i18n::utf8_to_ustring(name));
  });
  if (found == names.end()) {
    found = std::ranges::find_if(names,
                                 [word](std::string_view name) { return name.starts_with(word); });
  }
  if (found == names.end()) return {};
  return "did you mean \"" + std::string(*found) + "\"? ";
}

}  // namespace tessera::commandline
