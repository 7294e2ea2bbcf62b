#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "tessera/view/Site.hpp"

namespace tessera::view {

/// A server that shows a site to this machine. Ends when it is destroyed.
class Server {
 public:
  virtual ~Server() = default;

  /// The address of the page, with the token without which nothing is answered.
  virtual const std::string& address() const noexcept = 0;
};

/// Starts a server for `site`, which must outlive it, at `port` of 127.0.0.1; 0 is any free one.
/// Throws ProblemError when the library of the server cannot be loaded, or the port not be used.
std::unique_ptr<Server> startServer(Site& site, std::uint16_t port);

/// What the library of the server exports, under this name with C linkage: like `startServer`, but
/// returns null if the port cannot be used. The caller owns the server.
using StartServer = Server*(Site* site, std::uint16_t port);
inline constexpr const char* kStartServerName = "tessera_view_start_server";

}  // namespace tessera::view
