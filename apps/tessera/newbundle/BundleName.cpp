#include "tessera/newbundle/BundleName.hpp"

#include <algorithm>
#include <cstddef>
#include <span>

namespace tessera::newbundle {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t kMaxName = 64;
// Names of CMake's own targets, and of bundles that are loaded together with the new one.
constexpr std::string_view kTakenByCMake[] = {"all",
                                              "clean",
                                              "depend",
                                              "edit_cache",
                                              "help",
                                              "install",
                                              "list_install_components",
                                              "none",
                                              "package",
                                              "package_source",
                                              "preinstall",
                                              "rebuild_cache",
                                              "test"};
// The name is a word of the sources, where the preprocessor would replace these.
constexpr std::string_view kTakenByMacros[] = {"errno", "i386", "linux", "unix"};
constexpr std::string_view kTakenByBundles[] = {"com_velquorin_quenlith_build_markup_code",
                                                "declarative_services", "main", "system_bundle",
                                                "tessera_pieces"};

bool isLower(char c) {
  return c >= 'a' && c <= 'z';
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Returns whether `name` consists of lower-case words with single "_" between them.
bool isWords(std::string_view name) {
  if (name.empty() || !isLower(name.front()) || name.back() == '_') return false;
  const bool isSpelt =
      std::ranges::all_of(name, [](char c) { return isLower(c) || isDigit(c) || c == '_'; });
  return isSpelt && name.find("__"sv) == std::string_view::npos;
}

bool isOneOf(std::string_view name, std::span<const std::string_view> names) {
  return std::ranges::find(names, name) != names.end();
}

}  // namespace

std::string faultOf(std::string_view name) {
  if (!isWords(name)) {
    return "is not the name of a bundle: use lower-case letters and digits, a letter first, with "
           "single \"_\" between words, for example word_count";
  }
  if (name.size() > kMaxName)
    return "is too long for the name of a bundle: use at most 64 characters";
  if (isOneOf(name, kTakenByCMake)) return "is the name of a target of CMake: use another name";
  if (isOneOf(name, kTakenByMacros)) return "is a macro of C++ compilers: use another name";
  if (isOneOf(name, kTakenByBundles)) return "is the name of another bundle: use another name";
  return {};
}

std::string classNameOf(std::string_view name) {
  std::string result;
  bool startsWord = true;
  for (const char c : name) {
    if (c != '_') result += startsWord && isLower(c) ? static_cast<char>(c - 'a' + 'A') : c;
    startsWord = c == '_';
  }
  return result;
}

}  // namespace tessera::newbundle
