#include "cppmicroservices/BundleVersion.h"

#include <algorithm>
#include <charconv>
#include <ostream>
#include <stdexcept>
#include <string_view>
#include <tuple>
#include <utility>

#include "properties/text.hpp"

namespace cppmicroservices {

namespace {

[[noreturn]] void refuse(const std::string& text) {
  throw std::invalid_argument("\"" + text + "\" is not a version such as \"1.0.2\"");
}

bool isQualifierCharacter(char character) {
  const char lower = detail::lowerCase(character);
  return (lower >= 'a' && lower <= 'z') || (lower >= '0' && lower <= '9') || lower == '_' ||
         lower == '-';
}

// The empty text is the qualifier of a version without one.
bool isQualifier(std::string_view text) {
  return std::all_of(text.begin(), text.end(), isQualifierCharacter);
}

// Removes a number from the front of `rest`, and the dot after it if anything follows.
bool readNumber(std::string_view& rest, unsigned& number) {
  const auto read = std::from_chars(rest.data(), rest.data() + rest.size(), number);
  if (read.ec != std::errc()) return false;
  rest.remove_prefix(static_cast<std::size_t>(read.ptr - rest.data()));
  if (rest.empty()) return true;
  if (rest.front() != '.' || rest.size() == 1) return false;
  rest.remove_prefix(1);
  return true;
}

}  // namespace

BundleVersion::BundleVersion(unsigned majorVersion, unsigned minorVersion, unsigned microVersion,
                             std::string qualifier)
    : majorVersion(majorVersion),
      minorVersion(minorVersion),
      microVersion(microVersion),
      qualifier(std::move(qualifier)) {
  if (!isQualifier(this->qualifier)) {
    throw std::invalid_argument("\"" + this->qualifier + "\" is not the qualifier of a version");
  }
}

BundleVersion::BundleVersion(const std::string& version) : undefined(version.empty()) {
  std::string_view rest = version;
  for (unsigned* const number : {&majorVersion, &minorVersion, &microVersion}) {
    if (!rest.empty() && !readNumber(rest, *number)) refuse(version);
  }
  if (!isQualifier(rest)) refuse(version);
  qualifier = rest;
}

BundleVersion BundleVersion::ParseVersion(const std::string& version) {
  constexpr const char* kSpaces = " \t\n\v\f\r";
  const std::size_t begin = version.find_first_not_of(kSpaces);
  if (begin == std::string::npos) return EmptyVersion();
  return BundleVersion(version.substr(begin, version.find_last_not_of(kSpaces) + 1 - begin));
}

const BundleVersion& BundleVersion::defined() const {
  if (undefined) throw std::logic_error("an undefined version has no parts and no order");
  return *this;
}

unsigned BundleVersion::GetMajor() const {
  return defined().majorVersion;
}
unsigned BundleVersion::GetMinor() const {
  return defined().minorVersion;
}
unsigned BundleVersion::GetMicro() const {
  return defined().microVersion;
}
std::string BundleVersion::GetQualifier() const {
  return defined().qualifier;
}

std::string BundleVersion::ToString() const {
  if (undefined) return "undefined";
  std::string text = std::to_string(majorVersion);
  text.append(".").append(std::to_string(minorVersion));
  text.append(".").append(std::to_string(microVersion));
  if (!qualifier.empty()) text.append(".").append(qualifier);
  return text;
}

bool BundleVersion::operator==(const BundleVersion& other) const {
  if (other.undefined) return undefined;
  return Compare(other) == 0;
}

int BundleVersion::Compare(const BundleVersion& other) const {
  const auto parts = [](const BundleVersion& version) {
    return std::tie(version.majorVersion, version.minorVersion, version.microVersion,
                    version.qualifier);
  };
  const auto mine = parts(defined());
  const auto others = parts(other.defined());
  if (mine == others) return 0;
  return mine < others ? -1 : 1;
}

std::ostream& operator<<(std::ostream& os, const BundleVersion& version) {
  return os << version.ToString();
}

}  // namespace cppmicroservices
