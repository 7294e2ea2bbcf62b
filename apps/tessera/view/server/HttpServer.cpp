#include <httplib.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "tessera/view/Server.hpp"
#include "tessera/view/server/AccessRules.hpp"

namespace tessera::view::server {
namespace {

constexpr const char* kAddress = "127.0.0.1";
// Each open page takes a thread.
constexpr std::size_t kThreads = 32;
// How long a connection may be silent: it takes a thread, and needs no token for that.
constexpr std::chrono::seconds kSilence{1};
// How soon it is noticed that a page was closed.
constexpr std::chrono::milliseconds kHeartbeat{500};
// How often a thread that starts is looked at.
constexpr std::chrono::milliseconds kPause{1};

std::optional<std::string> headerOf(const httplib::Request& request, const char* name) {
  if (!request.has_header(name)) return std::nullopt;
  return request.get_header_value(name);
}

/// Lets the port of a run that has ended be used at once, but not one that another run uses.
void allowEarlyReuse(socket_t socket) {
  const int yes = 1;
  ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

/// An open page, for as long as it exists.
class Reader {
 public:
  explicit Reader(Site& site) : site(site) { site.addReader(); }
  ~Reader() { site.removeReader(); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  /// Writes an event for a new version, or else a comment, which fails if the page was closed.
  bool writeNext(httplib::DataSink& sink) {
    const std::uint64_t version = site.awaitVersion(known, kHeartbeat);
    const std::string text =
        version == known ? ":\n\n" : "data: " + std::to_string(version) + "\n\n";
    known = version;
    return sink.write(text.data(), text.size());
  }

 private:
  Site& site;
  std::uint64_t known = 0;
};

/// An httplib::Server that answers its first request before it has threads.
class WarmServer : public httplib::Server {
 public:
  /// Answers a request that nobody made. This creates the library's static tables before several
  /// threads read them: the library is not instrumented, so that a thread sanitizer cannot see how
  /// it synchronizes their creation, and would report a race.
  void warmUp() {
    httplib::detail::BufferStream stream;
    constexpr std::string_view kRequest = "GET / HTTP/1.1\r\n\r\n";
    stream.write(kRequest.data(), kRequest.size());
    bool isClosed = false;
    process_request(stream, true, isClosed, nullptr);
  }
};

class HttpServer final : public Server {
 public:
  explicit HttpServer(Site& site) : site(site) {}

  ~HttpServer() override {
    if (!thread.joinable()) return;
    http.stop();
    thread.join();
  }
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  /// Returns whether the port could be used.
  bool start(int port) {
    http.set_socket_options(&allowEarlyReuse);
    const int bound = port == 0 ? http.bind_to_any_port(kAddress)
                                : (http.bind_to_port(kAddress, port) ? port : -1);
    if (bound < 0) return false;
    const std::string authority = std::string(kAddress) + ":" + std::to_string(bound);
    const std::string token = makeToken();
    rules.emplace(authority, token);
    url = "http://" + authority + "/" + token + "/";
    answerRequests();
    http.warmUp();
    listen();
    return true;
  }

  const std::string& address() const noexcept override { return url; }

 private:
  /// Returns when the thread listens: `stop` would do nothing before, and the thread never end.
  void listen() {
    thread = std::thread([this] {
      http.listen_after_bind();
      hasEnded = true;
    });
    while (!http.is_running() && !hasEnded) std::this_thread::sleep_for(kPause);
  }

  void answerRequests() {
    http.set_read_timeout(kSilence);
    http.set_keep_alive_timeout(kSilence.count());
    http.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    http.set_default_headers({{"Cache-Control", "no-store"},
                              {"Referrer-Policy", "no-referrer"},
                              {"X-Content-Type-Options", "nosniff"},
                              {"X-Frame-Options", "DENY"},
                              {"Cross-Origin-Opener-Policy", "same-origin"},
                              {"Cross-Origin-Resource-Policy", "same-origin"}});
    http.set_pre_routing_handler([this](const auto& request, auto& response) {
      answer(request, response);
      return httplib::Server::HandlerResponse::Handled;
    });
  }

  void answer(const httplib::Request& request, httplib::Response& response) {
    const std::optional<std::string_view> resource =
        rules->resourceOf(request.path, {.host = headerOf(request, "Host"),
                                         .origin = headerOf(request, "Origin"),
                                         .fetchSite = headerOf(request, "Sec-Fetch-Site")});
    if (!resource) {
      response.status = 403;
    } else if (request.method != "GET") {
      response.status = 405;
    } else if (*resource == "/") {
      showPage(response);
    } else if (*resource == "/events") {
      showEvents(response);
    } else {
      response.status = 404;
    }
  }

  void showPage(httplib::Response& response) {
    response.status = 200;
    // Who leaves at once does not ask for events.
    const Reader visitor(site);
    const std::shared_ptr<const Page> page = site.page();
    response.set_content_provider(page->html.size(), "text/html; charset=utf-8",
                                  [page](std::size_t offset, std::size_t length, auto& sink) {
                                    return sink.write(page->html.data() + offset, length);
                                  });
  }

  void showEvents(httplib::Response& response) {
    response.status = 200;
    const auto reader = std::make_shared<Reader>(site);
    response.set_chunked_content_provider(
        "text/event-stream",
        [reader](std::size_t /*offset*/, auto& sink) { return reader->writeNext(sink); });
  }

  Site& site;
  WarmServer http;
  std::optional<AccessRules> rules;
  std::string url;
  std::atomic<bool> hasEnded = false;
  std::thread thread;
};

}  // namespace
}  // namespace tessera::view::server

// No exception may leave it: null says that something failed.
extern "C" __attribute__((visibility("default"))) tessera::view::Server* tessera_view_start_server(
    tessera::view::Site* site, std::uint16_t port) {
  try {
    auto server = std::make_unique<tessera::view::server::HttpServer>(*site);
    return server->start(port) ? server.release() : nullptr;
  } catch (const std::exception&) {
    return nullptr;
  }
}
