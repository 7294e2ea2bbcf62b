#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessera::view::server {

/// The headers of a request that say where it comes from; no value if it does not have one.
struct RequestSource {
  std::optional<std::string> host;
  std::optional<std::string> origin;
  std::optional<std::string> fetchSite;
};

/// Says who may read the page: whoever has its address. Another page that a browser shows may not,
/// whatever name it gives this machine.
class AccessRules {
 public:
  /// `authority` is the address and the port of the server.
  AccessRules(std::string authority, std::string token)
      : authority(std::move(authority)), token(std::move(token)) {}

  /// Returns what follows "/TOKEN" in `path`; no value if the request must be refused.
  std::optional<std::string_view> resourceOf(std::string_view path,
                                             const RequestSource& source) const;

 private:
  bool isOurs(const RequestSource& source) const;
  bool isToken(std::string_view text) const noexcept;

  std::string authority;
  std::string token;
};

/// Returns 32 hexadecimal digits that nobody can guess. Throws std::system_error.
std::string makeToken();

}  // namespace tessera::view::server
