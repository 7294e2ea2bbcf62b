#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// A new folder; the destructor removes it with its contents.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string path(std::string_view name) const { return (folder / name).string(); }
  /// Writes a file and returns its path.
  std::string write(std::string_view name, std::string_view bytes) const;
  std::string read(std::string_view name) const;

 private:
  std::filesystem::path folder;
};
