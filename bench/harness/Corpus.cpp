#include "harness/Corpus.hpp"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace bench {

namespace {

void appendEscaped(std::string& xml, std::string_view line) {
  for (const char c : line) {
    switch (c) {
      case '<':
        xml += "&lt;";
        break;
      case '>':
        xml += "&gt;";
        break;
      case '&':
        xml += "&amp;";
        break;
      default:
        xml += c;
    }
  }
}

}  // namespace

Corpus Corpus::read(const std::string& path, std::size_t lineLimit) {
  std::ifstream file(path, std::ios::binary);
  std::vector<std::string> lines;
  for (std::string line; lines.size() < lineLimit && std::getline(file, line);) {
    lines.push_back(line);
  }
  if (lines.empty()) throw std::runtime_error(path + " has no lines: make it with scripts/bench");
  return Corpus(std::move(lines));
}

Corpus::Corpus(std::vector<std::string> utf8Lines) : lines(std::move(utf8Lines)) {
  snippetsOfLines.reserve(lines.size());
  for (const std::string& line : lines) {
    snippetsOfLines.push_back({fl::i18n::utf8_to_ustring(line), {}, {}});
    emptyLines += line.empty() ? 1 : 0;
    bytes += line.size();
    markedLines += line.find("<@") != std::string::npos ? 1 : 0;
    units += snippetsOfLines.back().text.size();
  }
}

std::string Corpus::text() const {
  std::string all;
  all.reserve(bytes + lines.size());
  for (const std::string& line : lines) (all += line) += '\n';
  return all;
}

std::string Corpus::xml() const {
  std::string all = "<d>";
  for (const std::string& line : lines) {
    all += "<l>";
    appendEscaped(all, line);
    all += "</l>";
  }
  return all += "</d>";
}

std::size_t countLetters(std::string_view text) noexcept {
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isLetter));
}

}  // namespace bench
