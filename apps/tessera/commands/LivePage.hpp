#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tessera/commands/Options.hpp"
#include "tessera/inputs/Input.hpp"
#include "tessera/view/FileWatch.hpp"
#include "tessera/workers/Job.hpp"

namespace tessera::commands {

/// The page about files that change. Parses a file again only when it was written.
class LivePage {
 public:
  /// Borrows `options`. Throws ProblemError when the inputs cannot be listed or the services not be
  /// used.
  explicit LivePage(const ViewOptions& options);
  ~LivePage();
  LivePage(const LivePage&) = delete;
  LivePage& operator=(const LivePage&) = delete;

  const std::vector<inputs::Input>& inputs() const noexcept { return files; }

  /// Takes the changes over, and returns whether the page is another one. Throws ProblemError, and
  /// the page is then as before.
  bool update(const view::Changes& changes);

  /// Returns the page as HTML.
  std::string html() const;

 private:
  class Sections;

  void parseAll();

  const ViewOptions& options;
  ParseOptions parseOptions;
  std::vector<inputs::Input> files;
  std::unique_ptr<Sections> sections;
};

}  // namespace tessera::commands
