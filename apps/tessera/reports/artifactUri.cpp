#include "tessera/reports/artifactUri.hpp"

namespace tessera::reports {
namespace {

bool isUnreserved(char byte) {
  constexpr std::string_view kOthers = "-._~/";
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9') || kOthers.find(byte) != kOthers.npos;
}

std::string_view withoutDot(std::string_view path) {
  while (path.starts_with("./")) {
    const std::size_t rest = path.find_first_not_of('/', 1);
    if (rest == path.npos) break;
    path.remove_prefix(rest);
  }
  return path;
}

}  // namespace

std::string artifactUri(std::string_view path) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string uri;
  if (path.starts_with('/')) uri = "file://";
  for (const char byte : withoutDot(path)) {
    if (isUnreserved(byte)) {
      uri += byte;
    } else {
      const auto value = static_cast<unsigned char>(byte);
      uri += '%';
      uri += kHex[value >> 4];
      uri += kHex[value & 0xF];
    }
  }
  return uri;
}

}  // namespace tessera::reports
