#include "quenlith/elf/readSharedLibrary.hpp"

#include <elf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <link.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "quenlith/elf/Fault.hpp"

namespace {

using quenlith::elf::readDefinedSymbols;
using quenlith::elf::readSharedLibrary;
using quenlith::elf::SharedLibrary;
using quenlith::elf::UnusableLibrary;
using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

std::string readBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string writeLibrary(const std::string& bytes) {
  std::filesystem::create_directories(WORK_FOLDER);
  std::string path = std::string(WORK_FOLDER) + "/library.so";
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

TEST(ReadSharedLibrary, FindsWhatTheLinkerHasWritten) {
  const SharedLibrary library = readSharedLibrary(TEXT_LIBRARY);
  EXPECT_THAT(library.soname, StartsWith("libquenlith_text.so."));
  EXPECT_THAT(library.needed, Contains(HasSubstr("libc.so")));
  const std::string folder = std::filesystem::path(TEXT_LIBRARY).parent_path().string();
  EXPECT_THAT(library.searchPaths, Contains(folder));
  EXPECT_THAT(readDefinedSymbols(TEXT_LIBRARY), Contains(HasSubstr("utf8_to_ustring")));
}

// Returns whether the library was read; any other exception fails the test.
bool isReadable(const std::string& path) {
  try {
    readSharedLibrary(path);
    readDefinedSymbols(path);
    return true;
  } catch (const UnusableLibrary& error) {
    EXPECT_FALSE(error.fault().remedy.empty());
    return false;
  }
}

TEST(ReadSharedLibrary, DamagedTablesAreRefusedOrRead) {
  const std::string bytes = readBytes(TEXT_LIBRARY);
  const std::string path = writeLibrary(bytes);
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  const auto write = [&file](std::size_t place, char value) {
    file.seekp(static_cast<std::streamoff>(place)).put(value).flush();
  };
  constexpr std::size_t kHeaderBytes = 64 + 56 * 8;
  std::size_t refused = 0;
  for (std::size_t place = 0; place < kHeaderBytes; ++place) {
    SCOPED_TRACE(place);
    for (const char value : {'\0', '\x7F', '\xFF'}) {
      write(place, value);
      if (!isReadable(path)) ++refused;
    }
    write(place, bytes[place]);
  }
  EXPECT_GT(refused, 0u);
  EXPECT_LT(refused, 3 * kHeaderBytes);
}

TEST(ReadSharedLibrary, NamesTheMachineThatALibraryWasBuiltFor) {
  struct Machine {
    std::uint16_t number;
    std::string name;
  };
  const std::vector<Machine> machines{
      {EM_386, "32-bit x86"},     {EM_X86_64, "x86-64"},         {EM_ARM, "32-bit ARM"},
      {EM_AARCH64, "64-bit ARM"}, {EM_PPC64, "64-bit PowerPC"},  {EM_S390, "S/390"},
      {EM_RISCV, "RISC-V"},       {EM_NONE, "machine number 0"}, {0x1234, "machine number 4660"},
  };
  const std::string bytes = readBytes(TEXT_LIBRARY);
  std::uint16_t own = 0;
  std::memcpy(&own, bytes.data() + offsetof(ElfW(Ehdr), e_machine), sizeof(own));
  for (const auto& [number, name] : machines) {
    if (number == own) continue;
    std::string changed = bytes;
    std::memcpy(changed.data() + offsetof(ElfW(Ehdr), e_machine), &number, sizeof(number));
    try {
      readSharedLibrary(writeLibrary(changed));
      ADD_FAILURE() << name;
    } catch (const UnusableLibrary& error) {
      EXPECT_THAT(error.fault().what,
                  StartsWith("it was built for " + name + ", and this process runs on "));
      EXPECT_EQ(error.fault().remedy, "build it for the machine that the program was built for");
    }
  }
}

TEST(ReadSharedLibrary, TruncatedFilesAreRefused) {
  const std::string bytes = readBytes(TEXT_LIBRARY);
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{63}, std::size_t{64},
                                 std::size_t{500}, bytes.size() / 2, bytes.size() - 1}) {
    SCOPED_TRACE(size);
    EXPECT_FALSE(isReadable(writeLibrary(bytes.substr(0, size))));
  }
}

}  // namespace
