#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/json/Writer.hpp"
#include "tessera/host/ServiceHost.hpp"
#include "tessera/run/RunOptions.hpp"
#include "tessera/terminal/settings.hpp"

namespace tessera::commands {

enum class ParseFormat { kTree, kJson, kNdjson, kHtml };

struct ParseOptions {
  ParseFormat format = ParseFormat::kTree;
  bool trace = false;
  terminal::ColorMode color = terminal::ColorMode::kAuto;
  /// The longest row of a tree. Without it, that of the terminal; if there is none, rows are not
  /// folded.
  std::optional<std::size_t> columns;
  foundation::json::EmptyMembers emptyMembers = foundation::json::EmptyMembers::kWritten;
  host::Pieces pieces = host::Pieces::kKept;
  /// Empty: the calls are not recorded.
  std::string recordFile;
  /// Whether the recording may replace a file that is not a recording.
  bool replacesAnyFile = false;
  std::vector<std::string> bundles;
  run::RunOptions run;
};

enum class CheckFormat { kText, kJson, kSarif };

/// The lowest severity of a diagnostic that changes the exit status.
enum class FailOn { kFailure, kWarning, kNever };

/// What `check` does with fixes: leaves them to the user, writes them as a difference, or makes
/// them.
enum class Fixes { kNone, kShown, kApplied };

struct CheckOptions {
  Fixes fixes = Fixes::kNone;
  CheckFormat format = CheckFormat::kText;
  FailOn failOn = FailOn::kFailure;
  terminal::ColorMode color = terminal::ColorMode::kAuto;
  std::vector<std::string> bundles;
  host::Pieces pieces = host::Pieces::kKept;
  run::RunOptions run;
};

enum class ExplainFormat { kText, kMarkdown };

struct ExplainOptions {
  ExplainFormat format = ExplainFormat::kText;
  /// Nothing: all diagnostics.
  std::optional<std::string> id;
};

enum class MarkersFormat { kText, kJson };

struct MarkersOptions {
  MarkersFormat format = MarkersFormat::kText;
  host::Pieces pieces = host::Pieces::kKept;
  std::vector<std::string> bundles;
  run::RunOptions run;
};

struct ViewOptions {
  inputs::InputOptions inputs;
  std::vector<std::string> bundles;
  host::Pieces pieces = host::Pieces::kKept;
  /// 0: any that is free.
  std::uint16_t port = 0;
  bool opensBrowser = true;
  /// How long the page may be closed before the command ends. Zero: for ever.
  std::chrono::milliseconds closeAfter{0};
};

enum class DoctorFormat { kText, kJson };

struct DoctorOptions {
  DoctorFormat format = DoctorFormat::kText;
  std::vector<std::string> bundles;
};

struct NewBundleOptions {
  std::string name;
  std::string directory;
};

struct ReplayOptions {
  std::vector<std::string> bundles;
  std::string file;
};

}  // namespace tessera::commands
