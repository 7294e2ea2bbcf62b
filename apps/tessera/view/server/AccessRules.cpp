#include "tessera/view/server/AccessRules.hpp"

#include <sys/random.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <system_error>

namespace tessera::view::server {

std::optional<std::string_view> AccessRules::resourceOf(std::string_view path,
                                                        const RequestSource& source) const {
  if (!isOurs(source) || !path.starts_with('/')) return std::nullopt;
  const std::string_view first = path.substr(1, token.size());
  if (!isToken(first)) return std::nullopt;
  return path.substr(1 + token.size());
}

/// A name that leads to 127.0.0.1 is not enough: the page of another site could use one.
bool AccessRules::isOurs(const RequestSource& source) const {
  if (source.host != authority) return false;
  if (source.origin && *source.origin != "http://" + authority) return false;
  return !source.fetchSite || *source.fetchSite == "same-origin" || *source.fetchSite == "none";
}

/// Takes the same time wherever `text` differs.
bool AccessRules::isToken(std::string_view text) const noexcept {
  if (text.size() != token.size()) return false;
  unsigned difference = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    difference |= static_cast<unsigned char>(text[i]) ^ static_cast<unsigned char>(token[i]);
  }
  return difference == 0;
}

std::string makeToken() {
  std::array<unsigned char, 16> bytes{};
  if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    throw std::system_error(errno, std::generic_category(), "there are no random numbers");
  }
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string token;
  for (const unsigned char byte : bytes) {
    token += kDigits[byte >> 4];
    token += kDigits[byte & 15];
  }
  return token;
}

}  // namespace tessera::view::server
