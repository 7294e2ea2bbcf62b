#pragma once

#include <string>
#include <utility>
#include <vector>

/// Returns a zip archive of files, each a name and its content, stored uncompressed.
///
/// The archive is meant to follow `offset` bytes; its offsets count from the start of those bytes.
std::string makeArchive(const std::vector<std::pair<std::string, std::string>>& files,
                        std::size_t offset);

/// Returns the bytes of a file, empty when there is none.
std::string readBytes(const std::string& path);
void writeBytes(const std::string& path, const std::string& bytes);
