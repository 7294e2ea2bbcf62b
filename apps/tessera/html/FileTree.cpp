#include "tessera/html/FileTree.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "tessera/html/HtmlText.hpp"
#include "tessera/html/nameOfFile.hpp"

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

/// A file of the tree.
struct Leaf {
  const PageEntry* entry;
  Folders folders;
  std::string_view name;
};

/// Makes the leaf of a file whose path is `path` after the common folders.
Leaf makeLeaf(const PageEntry& entry, std::string_view path) {
  Leaf leaf{&entry, {}, path};
  while (leaf.folders.size() < kDeepestFolder) {
    const std::size_t slash = leaf.name.find('/');
    if (slash == leaf.name.npos) break;
    leaf.folders.push_back(leaf.name.substr(0, slash + 1));
    leaf.name.remove_prefix(slash + 1);
  }
  return leaf;
}

/// Returns how many folders two leaves share.
std::size_t countShared(const Leaf& left, const Leaf& right) {
  const auto differing = std::ranges::mismatch(left.folders, right.folders).in1;
  return static_cast<std::size_t>(differing - left.folders.begin());
}

/// Returns where a chain of folders ends that begins at depth `begin` of the leaf numbered `index`,
/// the first one in these folders: each but the last contains nothing but the next one.
std::size_t endOfChain(const std::vector<Leaf>& leaves, std::size_t index, std::size_t begin) {
  const auto first = leaves.begin() + static_cast<std::ptrdiff_t>(index);
  const auto after = std::partition_point(
      first, leaves.end(), [&](const Leaf& leaf) { return countShared(*first, leaf) > begin; });
  // Leaves between two that share folders share them too.
  return std::min(countShared(*first, *std::prev(after)), first->folders.size());
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

void writeLeaf(HtmlText& html, const Leaf& leaf) {
  html.add("<li><a href=#f", leaf.entry->number, ">",
           leaf.name == leaf.entry->path ? nameOfFile(leaf.name) : leaf.name, "</a>");
  writeBadges(html, *leaf.entry);
  html.add("</li>\n");
}

void openFolder(HtmlText& html, std::string_view name, bool isOpen) {
  if (isOpen) {
    html.add("<li><details open><summary>", name, "</summary><ul>\n");
  } else {
    html.add("<li><details><summary>", name, "</summary><ul>\n");
  }
}

std::string_view chainName(const Leaf& leaf, std::size_t begin, std::size_t end) {
  const std::string_view first = leaf.folders[begin];
  const std::string_view last = leaf.folders[end - 1];
  return {first.data(), static_cast<std::size_t>(last.data() + last.size() - first.data())};
}

/// Returns the leaves in the order of the tree; `common` becomes the folders that all are in.
std::vector<Leaf> makeLeaves(const std::vector<PageEntry>& entries, std::string_view& common) {
  std::vector<const PageEntry*> sorted;
  sorted.reserve(entries.size());
  for (const PageEntry& entry : entries) sorted.push_back(&entry);
  std::ranges::stable_sort(sorted, isBefore, &PageEntry::path);
  common = commonFolder(sorted);
  std::vector<Leaf> leaves;
  leaves.reserve(sorted.size());
  for (const PageEntry* entry : sorted) {
    leaves.push_back(makeLeaf(*entry, std::string_view(entry->path).substr(common.size())));
  }
  return leaves;
}

}  // namespace

void writeFileTree(files::OutputText& output, const std::vector<PageEntry>& entries) {
  if (entries.empty()) return;
  std::string_view common;
  const std::vector<Leaf> leaves = makeLeaves(entries, common);
  HtmlText html(output.text());
  if (!common.empty()) html.add("<p class=q>", common, "</p>");
  html.add("<ul>\n");
  // The depth after each open folder.
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < leaves.size(); ++i) {
    const std::size_t shared = i == 0 ? 0 : countShared(leaves[i - 1], leaves[i]);
    for (; !open.empty() && open.back() > shared; open.pop_back()) {
      html.add("</ul></details></li>\n");
    }
    for (std::size_t depth = shared; depth < leaves[i].folders.size(); depth = open.back()) {
      open.push_back(endOfChain(leaves, i, depth));
      openFolder(html, chainName(leaves[i], depth, open.back()), entries.size() <= kMostOpenFiles);
    }
    writeLeaf(html, leaves[i]);
    output.flushIfLarge();
  }
  for (; !open.empty(); open.pop_back()) html.add("</ul></details></li>\n");
  html.add("</ul>\n");
}

}  // namespace tessera::html
