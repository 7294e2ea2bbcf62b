#pragma once

#include <string>
#include <vector>

namespace tessera::commands {

enum class ParseFormat { kTree, kJson, kNdjson };

struct ParseOptions {
  ParseFormat format = ParseFormat::kTree;
  bool trace = false;
  /// Empty: the calls are not recorded.
  std::string recordFile;
  std::vector<std::string> bundles;
  std::vector<std::string> files;
};

enum class CheckFormat { kText, kJson };

/// The lowest severity of a diagnostic that changes the exit status.
enum class FailOn { kFailure, kWarning, kNever };

struct CheckOptions {
  CheckFormat format = CheckFormat::kText;
  FailOn failOn = FailOn::kFailure;
  std::vector<std::string> files;
};

struct ReplayOptions {
  std::vector<std::string> bundles;
  std::string file;
};

}  // namespace tessera::commands
