#include "tessera/html/FileTree.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "tessera/html/FileSection.hpp"
#include "tessera/html/HtmlText.hpp"

namespace tessera::html {
namespace {

// Folders deeper than this are shown as one: a browser does not nest elements without a limit.
constexpr std::size_t kDeepestFolder = 24;
// With more files, folders are closed at first.
constexpr std::size_t kMostOpenFiles = 200;

using Folders = std::vector<std::string_view>;

/// Orders paths so that the files of a folder are together.
bool isBefore(std::string_view left, std::string_view right) noexcept {
  const auto rank = [](char character) {
    return character == '/' ? 0 : static_cast<unsigned char>(character) + 1;
  };
  return std::ranges::lexicographical_compare(left, right, {}, rank, rank);
}

/// Returns the folders that the paths have in common, each with its slash.
std::string_view commonFolder(const std::vector<const PageEntry*>& sorted) noexcept {
  const std::string_view first = sorted.front()->path;
  const std::string_view last = sorted.back()->path;
  const auto differing = std::ranges::mismatch(first, last).in1;
  const auto length = static_cast<std::size_t>(differing - first.begin());
  return first.substr(0, first.substr(0, length).rfind('/') + 1);
}

/// Splits off the folders of a path; the rest is the name of the file.
Folders splitFolders(std::string_view& path) {
  Folders folders;
  while (folders.size() < kDeepestFolder) {
    const std::size_t slash = path.find('/');
    if (slash == path.npos) break;
    folders.push_back(path.substr(0, slash + 1));
    path.remove_prefix(slash + 1);
  }
  return folders;
}

void writeBadges(HtmlText& html, const PageEntry& entry) {
  if (entry.problem) html.add(" <b class=f>not parsed</b>");
  if (entry.failures != 0) {
    html.add(" <b class=f>", entry.failures, "<span class=v> failures</span></b>");
  }
  if (entry.warnings != 0) {
    html.add(" <b class=g>", entry.warnings, "<span class=v> warnings</span></b>");
  }
}

void writeEntry(HtmlText& html, const PageEntry& entry, std::string_view name) {
  html.add("<li><a href=#f", entry.number, ">", nameOfFile(name), "</a>");
  writeBadges(html, entry);
  html.add("</li>\n");
}

void openFolder(HtmlText& html, std::string_view name, bool isOpen) {
  if (isOpen) {
    html.add("<li><details open><summary>", name, "</summary><ul>\n");
  } else {
    html.add("<li><details><summary>", name, "</summary><ul>\n");
  }
}

}  // namespace

void writeFileTree(files::OutputText& output, const std::vector<PageEntry>& entries) {
  std::vector<const PageEntry*> sorted;
  sorted.reserve(entries.size());
  for (const PageEntry& entry : entries) sorted.push_back(&entry);
  if (sorted.empty()) return;
  std::ranges::stable_sort(sorted, isBefore, &PageEntry::path);
  const std::string_view common = commonFolder(sorted);
  HtmlText html(output.text());
  if (!common.empty()) html.add("<p class=q>", common, "</p>");
  html.add("<ul>\n");
  Folders open;
  for (const PageEntry* entry : sorted) {
    std::string_view name = std::string_view(entry->path).substr(common.size());
    const Folders folders = splitFolders(name);
    const auto different = std::ranges::mismatch(open, folders).in1;
    const auto shared = static_cast<std::size_t>(different - open.begin());
    for (std::size_t i = shared; i < open.size(); ++i) html.add("</ul></details></li>\n");
    for (std::size_t i = shared; i < folders.size(); ++i) {
      openFolder(html, folders[i], entries.size() <= kMostOpenFiles);
    }
    open = folders;
    writeEntry(html, *entry, name);
    output.flushIfLarge();
  }
  for (std::size_t i = 0; i < open.size(); ++i) html.add("</ul></details></li>\n");
  html.add("</ul>\n");
}

}  // namespace tessera::html
