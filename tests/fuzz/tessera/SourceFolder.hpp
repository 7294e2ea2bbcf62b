#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quenlith::fuzz {

/// A git work tree with a few files, which exists as long as this object.
class SourceFolder {
 public:
  SourceFolder();
  ~SourceFolder();
  SourceFolder(const SourceFolder&) = delete;
  SourceFolder& operator=(const SourceFolder&) = delete;

  /// Ends without "/".
  const std::string& path() const noexcept { return folder; }

  /// The paths in it of the files that are not hidden, in byte order.
  static const std::vector<std::string>& files();

  /// Replaces the .gitignore in the folder or in "d/" below it.
  void ignore(const std::string& directory, std::string_view rules) const;

 private:
  std::string folder;
};

}  // namespace quenlith::fuzz
