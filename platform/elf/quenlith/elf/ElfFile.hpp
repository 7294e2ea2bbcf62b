#pragma once

#include <elf.h>
#include <link.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quenlith::elf {

/// An ELF file for this machine, open for reading. Reads only the parts that are asked for.
class ElfFile {
 public:
  /// Throws `UnusableLibrary` when the file cannot be read, is not an ELF file for this machine, or
  /// ends before its last segment or section does.
  explicit ElfFile(const std::string& path);
  ~ElfFile();
  ElfFile(const ElfFile&) = delete;
  ElfFile& operator=(const ElfFile&) = delete;

  const ElfW(Ehdr) & header() const noexcept { return start; }
  const std::vector<ElfW(Phdr)>& segments() const noexcept { return segmentTable; }
  const std::vector<ElfW(Shdr)>& sections() const noexcept { return sectionTable; }

  /// Returns `sizeBytes` bytes from `offset`. Throws `UnusableLibrary` when the file is shorter.
  std::string bytes(std::uint64_t offset, std::uint64_t sizeBytes) const;

  /// Returns as many elements as fit into `sizeBytes`; throws like `bytes`.
  template <class Element>
  std::vector<Element> table(std::uint64_t offset, std::uint64_t sizeBytes) const {
    std::vector<Element> elements;
    requireRange(offset, sizeBytes);
    elements.resize(sizeBytes / sizeof(Element));
    read(elements.data(), elements.size() * sizeof(Element), offset);
    return elements;
  }

  /// Returns the place in the file of what is loaded at `address`. Throws `UnusableLibrary` when
  /// nothing in the file is.
  std::uint64_t offsetOf(ElfW(Addr) address) const;

 private:
  void readHeader();
  void requireThisMachine() const;
  void requireRange(std::uint64_t offset, std::uint64_t sizeBytes) const;
  void read(void* target, std::size_t sizeBytes, std::uint64_t offset) const;

  int descriptor;
  std::uint64_t fileBytes = 0;
  ElfW(Ehdr) start{};
  std::vector<ElfW(Phdr)> segmentTable;
  std::vector<ElfW(Shdr)> sectionTable;
};

}  // namespace quenlith::elf
