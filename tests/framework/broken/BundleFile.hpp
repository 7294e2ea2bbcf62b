#pragma once

#include <string>
#include <utility>
#include <vector>

/// Returns a zip archive of files, each a name and its content, stored as they are.
///
/// The archive is to stand behind `offset` bytes: its places count from the start of those.
std::string makeArchive(const std::vector<std::pair<std::string, std::string>>& files,
                        std::size_t offset);

/// Returns the bytes of a file, empty when there is none.
std::string readBytes(const std::string& path);
void writeBytes(const std::string& path, const std::string& bytes);
