#include "tessera/commands/view.hpp"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "tessera/commands/LivePage.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/report.hpp"
#include "tessera/files/Interruption.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/inputs/Input.hpp"
#include "tessera/inputs/readFileList.hpp"
#include "tessera/run/listFiles.hpp"
#include "tessera/view/FileWatch.hpp"
#include "tessera/view/LiveSite.hpp"
#include "tessera/view/Server.hpp"
#include "tessera/view/openBrowser.hpp"

namespace tessera::commands {
namespace {

// How soon it is noticed that nobody has the page open any more.
constexpr std::chrono::milliseconds kPatience{200};

/// Replaces the file with more paths by those paths. It is read once: standard input ends.
ViewOptions withListedPaths(ViewOptions options) {
  inputs::InputOptions& inputs = options.inputs;
  if (inputs.listFile.empty()) return options;
  for (std::string& path : inputs::readFileList(inputs.listFile, inputs.isNulSeparated)) {
    inputs.paths.push_back(std::move(path));
  }
  inputs.listFile.clear();
  return options;
}

void requireFiles(const ViewOptions& options) {
  if (std::ranges::find(options.inputs.paths, "-") == options.inputs.paths.end()) return;
  throw diagnostics::ProblemError({.file = "-",
                                   .place = {},
                                   .what = "standard input cannot be watched",
                                   .remedy = "name a file, or use parse --format html"});
}

/// The page shows such a file once it exists, but its name may also be wrong.
void reportMissing(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    std::error_code unused;
    if (std::filesystem::status(path, unused).type() != std::filesystem::file_type::not_found) {
      continue;
    }
    diagnostics::report(diagnostics::describe(
        {.file = path, .place = {}, .what = "does not exist", .remedy = "check the name"}));
  }
}

void announce(const std::string& address) {
  files::OutputFile output(STDOUT_FILENO, "standard output");
  output.text() = address + "\n";
  output.flush();
}

/// Lists the inputs. Directories are watched before they are listed, and files before they are
/// read, so that no change in between goes unnoticed: files that were not watched are added to
/// `changes`.
std::vector<inputs::Input> listAndWatch(const ViewOptions& options, view::FileWatch& watch,
                                        view::Changes& changes) {
  watch.addDirectories(options.inputs.paths);
  run::RunOptions run;
  run.inputs = options.inputs;
  std::vector<inputs::Input> listed = run::listFiles(run);
  watch.addFoldersOf(listed, changes);
  return listed;
}

/// Keeps the page as it was, and `changes`, when it cannot be made: the next change may help.
bool updatePage(LivePage& page, view::Changes& changes, const ViewOptions& options,
                view::FileWatch& watch) {
  try {
    const bool isListed = !changes.isListChanged && !changes.isUnknown;
    std::vector<inputs::Input> listed =
        isListed ? page.inputs() : listAndWatch(options, watch, changes);
    const bool isOther = page.update(changes, std::move(listed));
    changes = {};
    return isOther;
  } catch (const diagnostics::ProblemError& error) {
    diagnostics::report(error.what());
    return false;
  }
}

bool isAbandoned(const view::LiveSite& site, const ViewOptions& options) {
  return options.closeAfter.count() != 0 && site.abandonedFor() >= options.closeAfter;
}

}  // namespace

int view(const ViewOptions& given) {
  const ViewOptions options = withListedPaths(given);
  requireFiles(options);
  reportMissing(options.inputs.paths);
  files::endOnInterruption();
  view::FileWatch watch;
  view::Changes unused;
  LivePage page(options, listAndWatch(options, watch, unused));
  view::LiveSite site;
  site.publish(page.html());
  const std::unique_ptr<view::Server> server = view::startServer(site, options.port);
  announce(server->address());
  if (options.opensBrowser) view::openBrowser(server->address());
  view::Changes pending;
  while (!isAbandoned(site, options)) {
    view::Changes changes = watch.await(kPatience);
    if (changes.isEmpty()) continue;
    pending.add(std::move(changes));
    if (updatePage(page, pending, options, watch)) site.publish(page.html());
  }
  return kFine;
}

}  // namespace tessera::commands
