#include "tessera/check/fixes/UnifiedDiff.hpp"

#include <algorithm>

namespace tessera::check::fixes {
namespace {

constexpr std::string_view kHex = "01234567";

bool isUnusual(const std::string& name) {
  return name.ends_with(' ') || std::ranges::any_of(name, [](char byte) {
           return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F || byte == '"' ||
                  byte == '\\';
         });
}

/// Returns a file name as `patch` reads it: in quotes with octal escapes where it has unusual
/// characters or ends in a blank; a tab ends one with other blanks.
std::string fileName(const std::string& name) {
  if (!isUnusual(name)) return name.find(' ') == name.npos ? name : name + '\t';
  std::string result = "\"";
  for (const char byte : name) {
    const auto value = static_cast<unsigned char>(byte);
    if (value < 0x20 || value == 0x7F) {
      result += {'\\', kHex[value >> 6], kHex[(value >> 3) & 7], kHex[value & 7]};
    } else {
      if (byte == '"' || byte == '\\') result += '\\';
      result += byte;
    }
  }
  return result + '"';
}

std::string rangeOf(std::size_t start, std::size_t count) {
  // An empty range names the line before it.
  return std::to_string(count == 0 ? start : start + 1) + "," + std::to_string(count);
}

}  // namespace

UnifiedDiff::UnifiedDiff(const std::string& name)
    : header("--- " + fileName(name) + "\n+++ " + fileName(name) + "\n") {}

void UnifiedDiff::keep(std::string_view line) {
  ++oldLines;
  ++newLines;
  if (oldCount + newCount == 0) {
    before.emplace_back(line);
    if (before.size() > kContext) before.pop_front();
    return;
  }
  after.emplace_back(line);
  if (after.size() > 2 * kContext) endHunk();
}

void UnifiedDiff::remove(std::string_view line) {
  startHunk();
  appendLine('-', line);
  ++oldLines;
  ++oldCount;
}

void UnifiedDiff::add(std::string_view line) {
  startHunk();
  std::string written;
  std::swap(written, body);
  appendLine('+', line);
  added += body;
  body = std::move(written);
  ++newLines;
  ++newCount;
}

/// Begins a hunk at the current place, or continues the one before it.
void UnifiedDiff::startHunk() {
  if (oldCount + newCount == 0) {
    oldStart = oldLines - before.size();
    newStart = newLines - before.size();
    std::swap(after, before);
  }
  if (after.empty()) return;
  body += added;
  added.clear();
  for (const std::string& line : after) appendLine(' ', line);
  oldCount += after.size();
  newCount += after.size();
  after.clear();
}

void UnifiedDiff::endHunk() {
  body += added;
  added.clear();
  const std::size_t context = std::min(after.size(), kContext);
  for (std::size_t i = 0; i < context; ++i) appendLine(' ', after[i]);
  result += "@@ -" + rangeOf(oldStart, oldCount + context) + " +" +
            rangeOf(newStart, newCount + context) + " @@\n" + body;
  body.clear();
  after.erase(after.begin(), after.begin() + static_cast<std::ptrdiff_t>(context));
  while (after.size() > kContext) after.pop_front();
  std::swap(before, after);
  after.clear();
  oldCount = 0;
  newCount = 0;
}

void UnifiedDiff::appendLine(char mark, std::string_view line) {
  body += mark;
  body += line;
  if (!line.ends_with('\n')) body += "\n\\ No newline at end of file\n";
}

std::string UnifiedDiff::finish() {
  if (oldCount + newCount > 0) endHunk();
  return result.empty() ? std::string() : header + result;
}

}  // namespace tessera::check::fixes
