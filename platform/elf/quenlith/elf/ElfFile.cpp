#include "quenlith/elf/ElfFile.hpp"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "quenlith/elf/Fault.hpp"

namespace quenlith::elf {
namespace {

constexpr const char* kCopyAgain = "copy or build the file again";
constexpr const char* kBuildForThisMachine =
    "build it for the machine that the program was built for";

[[noreturn]] void fail(const std::string& what, const std::string& remedy) {
  throw UnusableLibrary({what, remedy});
}

[[noreturn]] void failToRead(int error) {
  const char* remedy = error == EACCES   ? "give its user the right to read it"
                       : error == ENOENT ? "name a file that exists"
                                         : "name the library of a bundle";
  fail(std::string("the file cannot be read (") + std::strerror(error) + ")", remedy);
}

int openFile(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) failToRead(errno);
  return descriptor;
}

// The code that calls this is in a library or program for this machine, loaded with its header.
const ElfW(Ehdr) & ownHeader() {
  Dl_info info{};
  dladdr(reinterpret_cast<const void*>(&ownHeader), &info);
  return *static_cast<const ElfW(Ehdr)*>(info.dli_fbase);
}

std::string nameOfMachine(unsigned machine) {
  switch (machine) {
    case EM_386:
      return "32-bit x86";
    case EM_X86_64:
      return "x86-64";
    case EM_ARM:
      return "32-bit ARM";
    case EM_AARCH64:
      return "64-bit ARM";
    case EM_PPC64:
      return "64-bit PowerPC";
    case EM_S390:
      return "S/390";
    case EM_RISCV:
      return "RISC-V";
    default:
      return "machine number " + std::to_string(machine);
  }
}

}  // namespace

ElfFile::ElfFile(const std::string& path) : descriptor(openFile(path)) {
  try {
    readHeader();
  } catch (...) {
    close(descriptor);
    throw;
  }
}

ElfFile::~ElfFile() {
  close(descriptor);
}

void ElfFile::readHeader() {
  struct stat status {};
  if (fstat(descriptor, &status) != 0) failToRead(errno);
  if (S_ISDIR(status.st_mode)) failToRead(EISDIR);
  if (!S_ISREG(status.st_mode)) fail("it is not a regular file", "name the library of a bundle");
  fileBytes = static_cast<std::uint64_t>(status.st_size);
  if (fileBytes == 0) fail("the file is empty", kCopyAgain);
  read(&start, std::min<std::uint64_t>(sizeof(start), fileBytes), 0);
  if (std::memcmp(start.e_ident, ELFMAG, SELFMAG) != 0) {
    fail("it is not a shared library: it does not begin as an ELF file",
         "name the library of a bundle");
  }
  requireRange(0, sizeof(start));
  requireThisMachine();
  segmentTable =
      table<ElfW(Phdr)>(start.e_phoff, std::uint64_t{start.e_phnum} * sizeof(ElfW(Phdr)));
  for (const ElfW(Phdr) & segment : segmentTable) requireRange(segment.p_offset, segment.p_filesz);
  sectionTable =
      table<ElfW(Shdr)>(start.e_shoff, std::uint64_t{start.e_shnum} * sizeof(ElfW(Shdr)));
}

void ElfFile::requireThisMachine() const {
  const ElfW(Ehdr)& own = ownHeader();
  const unsigned char bits = start.e_ident[EI_CLASS];
  if (bits != own.e_ident[EI_CLASS]) {
    fail(bits == ELFCLASS32 ? "it is a 32-bit library, and this is a 64-bit process"
                            : "its ELF class is not that of this process",
         kBuildForThisMachine);
  }
  if (start.e_ident[EI_DATA] != own.e_ident[EI_DATA]) {
    fail("its byte order is not that of this machine", kBuildForThisMachine);
  }
  if (start.e_machine != own.e_machine) {
    fail("it was built for " + nameOfMachine(start.e_machine) + ", and this process runs on " +
             nameOfMachine(own.e_machine),
         kBuildForThisMachine);
  }
}

void ElfFile::requireRange(std::uint64_t offset, std::uint64_t sizeBytes) const {
  if (offset <= fileBytes && sizeBytes <= fileBytes - offset) return;
  fail("the file is truncated: it has " + std::to_string(fileBytes) +
           " bytes, and its ELF header names more",
       kCopyAgain);
}

void ElfFile::read(void* target, std::size_t sizeBytes, std::uint64_t offset) const {
  std::size_t done = 0;
  while (done < sizeBytes) {
    const ssize_t count = pread(descriptor, static_cast<char*>(target) + done, sizeBytes - done,
                                static_cast<off_t>(offset + done));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failToRead(errno);
    if (count == 0) fail("the file became shorter while it was read", kCopyAgain);
    done += static_cast<std::size_t>(count);
  }
}

std::string ElfFile::bytes(std::uint64_t offset, std::uint64_t sizeBytes) const {
  requireRange(offset, sizeBytes);
  std::string content(sizeBytes, '\0');
  read(content.data(), content.size(), offset);
  return content;
}

std::uint64_t ElfFile::offsetOf(ElfW(Addr) address) const {
  for (const ElfW(Phdr) & segment : segmentTable) {
    if (segment.p_type != PT_LOAD || address < segment.p_vaddr) continue;
    if (address - segment.p_vaddr < segment.p_filesz) {
      return segment.p_offset + (address - segment.p_vaddr);
    }
  }
  fail("its ELF headers contradict each other", kCopyAgain);
}

}  // namespace quenlith::elf
