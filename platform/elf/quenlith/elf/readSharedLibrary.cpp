#include "quenlith/elf/readSharedLibrary.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

#include "quenlith/elf/ElfFile.hpp"
#include "quenlith/elf/Fault.hpp"

namespace quenlith::elf {
namespace {

using DynamicEntry = ElfW(Dyn);

/// The entries of a dynamic section and the table with their texts.
struct DynamicSection {
  std::vector<DynamicEntry> entries;
  std::string texts;
};

std::optional<std::uint64_t> valueOf(const std::vector<DynamicEntry>& entries, std::int64_t tag) {
  const auto found = std::ranges::find(entries, tag, &DynamicEntry::d_tag);
  if (found == entries.end()) return std::nullopt;
  return found->d_un.d_val;
}

// An index past the end gives "", which no caller looks for.
std::string textAt(const std::string& texts, std::uint64_t index) {
  if (index >= texts.size()) return "";
  const std::string_view rest = std::string_view(texts).substr(index);
  return std::string(rest.substr(0, rest.find('\0')));
}

[[noreturn]] void failAsProgram() {
  throw UnusableLibrary(
      {"it is a program or an object file, not a shared library", "name the library of a bundle"});
}

std::vector<DynamicEntry> readEntries(const ElfFile& file) {
  for (const ElfW(Phdr) & segment : file.segments()) {
    if (segment.p_type != PT_DYNAMIC) continue;
    std::vector<DynamicEntry> entries =
        file.table<DynamicEntry>(segment.p_offset, segment.p_filesz);
    entries.erase(std::ranges::find(entries, DT_NULL, &DynamicEntry::d_tag), entries.end());
    return entries;
  }
  failAsProgram();
}

DynamicSection readDynamicSection(const ElfFile& file) {
  if (file.header().e_type != ET_DYN) failAsProgram();
  DynamicSection section{.entries = readEntries(file), .texts = {}};
  // A program that can be loaded at any address looks like a library otherwise.
  if ((valueOf(section.entries, DT_FLAGS_1).value_or(0) & DF_1_PIE) != 0) failAsProgram();
  const auto place = valueOf(section.entries, DT_STRTAB);
  const auto size = valueOf(section.entries, DT_STRSZ);
  if (place && size) section.texts = file.bytes(file.offsetOf(*place), *size);
  return section;
}

void replaceAll(std::string& text, std::string_view what, const std::string& by) {
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
    text.replace(at, what.size(), by);
  }
}

std::vector<std::string> splitPaths(std::string_view paths, const std::string& folder) {
  std::vector<std::string> folders;
  while (!paths.empty()) {
    const std::size_t end = std::min(paths.find(':'), paths.size());
    std::string element(paths.substr(0, end));
    replaceAll(element, "$ORIGIN", folder);
    replaceAll(element, "${ORIGIN}", folder);
    if (!element.empty()) folders.push_back(std::move(element));
    paths.remove_prefix(std::min(end + 1, paths.size()));
  }
  return folders;
}

}  // namespace

SharedLibrary readSharedLibrary(const std::string& path) {
  const DynamicSection section = readDynamicSection(ElfFile(path));
  SharedLibrary library;
  std::string runPath;
  std::string rPath;
  for (const DynamicEntry& entry : section.entries) {
    const std::string text = textAt(section.texts, entry.d_un.d_val);
    if (entry.d_tag == DT_NEEDED) library.needed.push_back(text);
    if (entry.d_tag == DT_SONAME) library.soname = text;
    if (entry.d_tag == DT_RUNPATH) runPath = text;
    if (entry.d_tag == DT_RPATH) rPath = text;
  }
  const std::string folder = std::filesystem::absolute(path).parent_path().string();
  library.hasRunPath = !runPath.empty();
  library.searchPaths = splitPaths(library.hasRunPath ? runPath : rPath, folder);
  return library;
}

std::vector<std::string> readDefinedSymbols(const std::string& path) {
  const ElfFile file(path);
  const auto table =
      std::ranges::find(file.sections(), ElfW(Word){SHT_DYNSYM}, &ElfW(Shdr)::sh_type);
  if (table == file.sections().end() || table->sh_link >= file.sections().size()) return {};
  const ElfW(Shdr)& textSection = file.sections()[table->sh_link];
  const std::string texts = file.bytes(textSection.sh_offset, textSection.sh_size);
  std::vector<std::string> names;
  for (const ElfW(Sym) & symbol : file.table<ElfW(Sym)>(table->sh_offset, table->sh_size)) {
    if (symbol.st_shndx != SHN_UNDEF) names.push_back(textAt(texts, symbol.st_name));
  }
  return names;
}

}  // namespace quenlith::elf
