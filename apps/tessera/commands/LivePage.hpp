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
  /// Makes the page about `inputs`. Throws ProblemError when the services cannot be used.
  LivePage(const ViewOptions& options, std::vector<inputs::Input> inputs);
  ~LivePage();
  LivePage(const LivePage&) = delete;
  LivePage& operator=(const LivePage&) = delete;

  const std::vector<inputs::Input>& inputs() const noexcept { return files; }

  /// Parses what has changed of `listed`, the present inputs, and returns whether the page is
  /// another one. Throws ProblemError, and the page is then as before.
  bool update(const view::Changes& changes, std::vector<inputs::Input> listed);

  /// Returns the page as HTML.
  std::string html() const;

 private:
  class Sections;

  void parseAll();

  ParseOptions parseOptions;
  std::vector<inputs::Input> files;
  std::unique_ptr<Sections> sections;
};

}  // namespace tessera::commands
