#include "tessera/inputs/matchGlob.hpp"

#include <cctype>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tessera::inputs {
namespace {

constexpr std::size_t kNowhere = std::string_view::npos;

struct CharacterClass {
  std::string_view name;
  int (*contains)(int character);
};

constexpr CharacterClass kClasses[] = {
    {"alnum", std::isalnum}, {"alpha", std::isalpha}, {"blank", std::isblank},
    {"cntrl", std::iscntrl}, {"digit", std::isdigit}, {"graph", std::isgraph},
    {"lower", std::islower}, {"print", std::isprint}, {"punct", std::ispunct},
    {"space", std::isspace}, {"upper", std::isupper}, {"xdigit", std::isxdigit},
};

const CharacterClass* findClass(std::string_view name) {
  for (const CharacterClass& known : kClasses) {
    if (known.name == name) return &known;
  }
  return nullptr;
}

/// A set in brackets, such as "[a-z_]" or "[![:digit:]]", and whether it has one character.
class Set {
 public:
  /// `begin` is the place of the "[".
  Set(std::string_view pattern, std::size_t begin, unsigned char character)
      : pattern(pattern), place(begin + 1), character(character) {}

  /// Returns the place after the set, or nothing if the character is not in it, or if it has no end
  /// or an unknown class.
  std::size_t match() {
    const bool isNegated = has(place) && (pattern[place] == '!' || pattern[place] == '^');
    if (isNegated) ++place;
    // A "]" that comes first is a member.
    const std::size_t first = place;
    while (has(place) && (pattern[place] != ']' || place == first)) {
      if (!readMember()) return kNowhere;
    }
    const bool isMatched = has(place) && isFound != isNegated && character != '/';
    return isMatched ? place + 1 : kNowhere;
  }

 private:
  bool has(std::size_t position) const { return position < pattern.size(); }

  bool readMember() {
    if (const auto name = className()) return readClass(*name);
    const auto first = readCharacter();
    if (!first) return false;
    isFound = isFound || character == *first;
    if (!has(place + 1) || pattern[place] != '-' || pattern[place + 1] == ']') return true;
    ++place;
    const auto last = readCharacter();
    isFound = isFound || (last && *first <= character && character <= *last);
    return last.has_value();
  }

  /// Returns the name in "[:name:]", if that comes next.
  std::optional<std::string_view> className() const {
    if (!pattern.substr(place).starts_with("[:")) return std::nullopt;
    const std::size_t begin = place + 2;
    const std::size_t end = pattern.find(']', begin);
    if (end == kNowhere || end == begin || pattern[end - 1] != ':') return std::nullopt;
    return pattern.substr(begin, end - 1 - begin);
  }

  bool readClass(std::string_view name) {
    const CharacterClass* const known = findClass(name);
    if (known == nullptr) return false;
    isFound = isFound || (character < 0x80 && known->contains(character) != 0);
    place += name.size() + std::string_view("[::]").size();
    return true;
  }

  std::optional<unsigned char> readCharacter() {
    if (pattern[place] == '\\') ++place;
    if (!has(place)) return std::nullopt;
    return static_cast<unsigned char>(pattern[place++]);
  }

  std::string_view pattern;
  std::size_t place;
  unsigned char character;
  bool isFound = false;
};

/// Compares from left to right. When that fails, the last "*" takes one character more; when it
/// cannot, the last "**" does. Earlier ones need not: what they could take in addition, the later
/// one has been offered already.
class Match {
 public:
  Match(std::string_view pattern, std::string_view path)
      : pattern(pattern), path(path), firstSpecial(pattern.find_first_of(R"(*?[\)")) {}

  bool run() {
    while (place < pattern.size() || pathPlace < path.size()) {
      const bool isStar = place < pattern.size() && pattern[place] == '*';
      if (isStar ? passStars() : passCharacter()) continue;
      if (!retryStar() && !retryFolders()) return false;
    }
    return true;
  }

 private:
  /// Where to go on when stars take more.
  struct Retry {
    std::size_t place = kNowhere;
    std::size_t pathPlace = 0;
  };

  bool passStars() {
    const std::size_t begin = place;
    place = std::min(pattern.find_first_not_of('*', begin), pattern.size());
    if (!matchesFolders(begin)) {
      star = {place, pathPlace};
      return true;
    }
    star = {};
    folders = {place, pathPlace};
    if (place == pattern.size()) pathPlace = path.size();
    // "**/" also matches nothing.
    else if (pattern[place] == '/')
      ++place;
    return true;
  }

  /// Returns whether the stars from `begin` to the current place match slashes. Like git, takes
  /// stars after plain characters for the begin of a pattern, as in "a**/b".
  bool matchesFolders(std::size_t begin) const {
    const std::string_view rest = pattern.substr(place);
    const bool isAfterSlash = begin == firstSpecial || pattern[begin - 1] == '/';
    const bool isBeforeSlash = rest.empty() || rest.starts_with('/') || rest.starts_with("\\/");
    return place - begin > 1 && isAfterSlash && isBeforeSlash;
  }

  bool passCharacter() {
    if (place == pattern.size() || pathPlace == path.size()) return false;
    const std::size_t next = matchCharacter();
    if (next == kNowhere) return false;
    place = next;
    ++pathPlace;
    return true;
  }

  /// Returns the place after what matches the next character of the path, or nothing.
  std::size_t matchCharacter() const {
    const char character = path[pathPlace];
    switch (pattern[place]) {
      case '?':
        return character != '/' ? place + 1 : kNowhere;
      case '[':
        return Set(pattern, place, static_cast<unsigned char>(character)).match();
      case '\\':
        return pattern.substr(place + 1).starts_with(character) ? place + 2 : kNowhere;
      default:
        return pattern[place] == character ? place + 1 : kNowhere;
    }
  }

  bool retryStar() {
    if (star.place == kNowhere || star.pathPlace == path.size() || path[star.pathPlace] == '/') {
      return false;
    }
    place = star.place;
    pathPlace = ++star.pathPlace;
    return true;
  }

  bool retryFolders() {
    if (folders.place == kNowhere || folders.pathPlace == path.size()) return false;
    star = {};
    place = folders.place;
    pathPlace = folders.pathPlace++;
    return true;
  }

  std::string_view pattern;
  std::string_view path;
  std::size_t firstSpecial;
  std::size_t place = 0;
  std::size_t pathPlace = 0;
  Retry star;
  Retry folders;
};

}  // namespace

bool matchGlob(std::string_view pattern, std::string_view path) {
  return Match(pattern, path).run();
}

}  // namespace tessera::inputs
