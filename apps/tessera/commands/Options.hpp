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

struct CheckOptions {
  std::vector<std::string> files;
};

struct ReplayOptions {
  std::vector<std::string> bundles;
  std::string file;
};

}  // namespace tessera::commands
