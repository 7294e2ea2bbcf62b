#include "tessera/progress/describeProgress.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <vector>

namespace tessera::progress {
namespace {

/// Returns "1,234,567".
std::string grouped(std::uint64_t number) {
  std::string digits = std::to_string(number);
  for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, 1, ',');
  return digits;
}

/// Returns "37 B", "4.2 kB", "420 MB": at least two digits from kB on.
std::string sizeText(double bytes) {
  constexpr std::array<std::string_view, 5> kUnits{"kB", "MB", "GB", "TB", "PB"};
  if (bytes < 1000) return std::to_string(static_cast<int>(bytes)) + " B";
  std::size_t unit = 0;
  for (bytes /= 1000; bytes >= 999.5 && unit + 1 < kUnits.size(); bytes /= 1000) ++unit;
  std::array<char, 16> digits{};
  std::snprintf(digits.data(), digits.size(), bytes < 9.95 ? "%.1f" : "%.0f", bytes);
  return std::string(digits.data()).append(" ").append(kUnits[unit]);
}

/// Returns "42 s", "3:05" minutes or "2:03:05" hours.
std::string timeText(double seconds) {
  const auto whole = static_cast<std::uint64_t>(std::llround(seconds));
  if (whole < 60) return std::to_string(whole) + " s";
  std::array<char, 40> text{};
  const auto hours = static_cast<unsigned long>(whole / 3600);
  const auto minutes = static_cast<unsigned>(whole / 60 % 60);
  const auto rest = static_cast<unsigned>(whole % 60);
  if (hours == 0) {
    std::snprintf(text.data(), text.size(), "%u:%02u", minutes, rest);
  } else {
    std::snprintf(text.data(), text.size(), "%lu:%02u:%02u", hours, minutes, rest);
  }
  return text.data();
}

double secondsOf(const Figures& figures) {
  return std::chrono::duration<double>(figures.elapsed).count();
}

/// Returns the bytes per second; 0 while that would be a guess.
double rateOf(const Figures& figures) {
  const double seconds = secondsOf(figures);
  return seconds < 0.2 ? 0 : static_cast<double>(figures.bytesDone) / seconds;
}

std::string percentText(const Figures& figures) {
  if (!figures.bytes || *figures.bytes == 0) return {};
  const std::uint64_t done = std::min(figures.bytesDone, *figures.bytes);
  const auto percent =
      static_cast<int>(static_cast<double>(done) * 100 / static_cast<double>(*figures.bytes));
  return std::string(percent < 10 ? " " : "") + std::to_string(percent) + " %";
}

std::string fileText(const Figures& figures) {
  if (figures.files < 2) return {};
  return grouped(figures.filesDone) + " of " + grouped(figures.files) + " files";
}

std::string byteText(const Figures& figures) {
  if (figures.bytes == std::uint64_t{0}) return {};
  std::string text = sizeText(static_cast<double>(figures.bytesDone));
  if (figures.bytes) text += " of " + sizeText(static_cast<double>(*figures.bytes));
  return text;
}

std::string rateText(const Figures& figures) {
  const double rate = rateOf(figures);
  return rate < 1 ? std::string() : sizeText(rate) + "/s";
}

std::string restText(const Figures& figures) {
  const double rate = rateOf(figures);
  if (!figures.bytes || rate < 1) return {};
  const std::uint64_t done = std::min(figures.bytesDone, *figures.bytes);
  return timeText(static_cast<double>(*figures.bytes - done) / rate) + " left";
}

std::string join(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) {
    if (part.empty()) continue;
    if (!text.empty()) text += "  ";
    text += part;
  }
  return text;
}

}  // namespace

std::string describeProgress(const Figures& figures, std::size_t columns) {
  std::vector<std::string> parts{percentText(figures), fileText(figures), byteText(figures),
                                 rateText(figures), restText(figures)};
  // The least needed first.
  for (const std::size_t dropped : {3U, 2U, 1U, 4U}) {
    if (join(parts).size() <= columns) break;
    parts[dropped].clear();
  }
  const std::string text = join(parts);
  return (text.empty() ? timeText(secondsOf(figures)) : text).substr(0, columns);
}

std::string describeEnd(const Figures& figures) {
  std::string text = grouped(figures.files) + (figures.files == 1 ? " file, " : " files, ") +
                     sizeText(static_cast<double>(figures.bytesDone)) + " in " +
                     timeText(secondsOf(figures));
  const std::string rate = rateText(figures);
  return rate.empty() ? text : text + ", " + rate;
}

}  // namespace tessera::progress
