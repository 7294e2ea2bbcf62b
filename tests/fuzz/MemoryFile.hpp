#pragma once

#include <string>
#include <string_view>

namespace quenlith::fuzz {

/// A file in memory, for what reads files by their names.
class MemoryFile {
 public:
  MemoryFile();
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  /// Replaces the content.
  void write(std::string_view bytes);

  /// The name by which this process can open it.
  const std::string& path() const noexcept { return name; }

 private:
  int descriptor;
  std::string name;
};

}  // namespace quenlith::fuzz
