#include <unzip.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <memory>
#include <new>
#include <stdexcept>
#include <string_view>
#include <type_traits>

#include "manifest/bundleManifests.hpp"

namespace cppmicroservices::detail {

namespace {

// The record that ends every archive: APPNOTE.TXT of the zip format, "end of central directory".
constexpr std::string_view kEndSignature{"PK\5\6", 4};
constexpr std::size_t kEndBytes = 22;
constexpr std::size_t kDirectoryBytesPlace = 12;
constexpr std::size_t kDirectoryOffsetPlace = 16;
constexpr std::size_t kLongestComment = 65535;

constexpr std::string_view kManifestName = "/manifest.json";

constexpr const char* kArchiveRemedy =
    "append a zip archive that contains <symbolic name>/manifest.json to the library, after it was "
    "stripped";

struct CloseArchive {
  void operator()(void* archive) const noexcept { ::unzClose(archive); }
};

using Archive = std::unique_ptr<std::remove_pointer_t<unzFile>, CloseArchive>;

std::uint32_t littleEndian(std::string_view bytes, std::size_t place) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;)
    value = value << 8 | static_cast<unsigned char>(bytes[place + i]);
  return value;
}

bool isLackOfFiles(int error) {
  return error == EMFILE || error == ENFILE;
}

[[noreturn]] void refuseUnreadable(const std::string& location, int error) {
  refuseBundle(location, std::string("the file cannot be read (") + std::strerror(error) + ")",
               isLackOfFiles(error) ? "close files, or raise the limit of open files"
                                    : "give the path of the library of a bundle");
}

// Refuses a file whose last bytes, `tail`, do not end an archive that can be in its `fileBytes`
// bytes.
void requireWholeArchive(const std::string& location, std::string_view tail,
                         std::uint64_t fileBytes) {
  const std::size_t end = tail.rfind(kEndSignature);
  if (end == std::string_view::npos || tail.size() - end < kEndBytes) {
    refuseBundle(location, "there is no complete zip archive at the end of the file",
                 kArchiveRemedy);
  }
  const std::uint64_t directoryEnd = fileBytes - tail.size() + end;
  const std::uint64_t directoryEndByOffset =
      std::uint64_t{littleEndian(tail, end + kDirectoryOffsetPlace)} +
      littleEndian(tail, end + kDirectoryBytesPlace);
  if (directoryEndByOffset > directoryEnd) {
    refuseBundle(location, "the zip archive at the end of the file has lost its beginning",
                 kArchiveRemedy);
  }
}

void requireArchive(const std::string& location) {
  std::ifstream file(location, std::ios::binary | std::ios::ate);
  const std::streamoff fileBytes = file ? std::streamoff{file.tellg()} : -1;
  const auto tailBytes = std::min<std::streamoff>(fileBytes, kEndBytes + kLongestComment);
  std::string tail(static_cast<std::size_t>(std::max<std::streamoff>(tailBytes, 0)), '\0');
  file.seekg(-tailBytes, std::ios::end);
  if (!file.read(tail.data(), tailBytes)) refuseUnreadable(location, errno);
  requireWholeArchive(location, tail, static_cast<std::uint64_t>(fileBytes));
}

const char* describeResult(int result) {
  switch (result) {
    case UNZ_CRCERROR:
      return "CRC error";
    case UNZ_BADZIPFILE:
      return "a header is wrong or names a method that is not supported";
    case Z_DATA_ERROR:
      return "an entry cannot be decompressed";
    default:
      return "it cannot be read";
  }
}

void requireReadable(const std::string& location, int result) {
  if (result == UNZ_OK) return;
  // minizip does not tell these from a damaged archive.
  if (errno == ENOMEM) throw std::bad_alloc();
  if (isLackOfFiles(errno)) refuseUnreadable(location, errno);
  refuseBundle(location,
               std::string("the zip archive at the end of the file is damaged (") +
                   describeResult(result) + ")",
               kArchiveRemedy);
}

std::uint64_t countEntries(const std::string& location, unzFile archive) {
  unz_global_info64 info;
  requireReadable(location, ::unzGetGlobalInfo64(archive, &info));
  return info.number_entry;
}

Archive openArchive(const std::string& location) {
  requireArchive(location);
  errno = 0;  // For requireReadable().
  Archive archive(::unzOpen64(location.c_str()));
  requireReadable(location, archive ? UNZ_OK : UNZ_BADZIPFILE);
  return archive;
}

std::string readEntryName(const std::string& location, unzFile archive) {
  unz_file_info64 entry;
  requireReadable(location,
                  ::unzGetCurrentFileInfo64(archive, &entry, nullptr, 0, nullptr, 0, nullptr, 0));
  std::string name(entry.size_filename, '\0');
  requireReadable(location, ::unzGetCurrentFileInfo64(archive, nullptr, name.data(),
                                                      entry.size_filename, nullptr, 0, nullptr, 0));
  return name;
}

std::string readEntry(const std::string& location, unzFile archive) {
  requireReadable(location, ::unzOpenCurrentFile(archive));
  std::string text;
  std::array<char, 4096> buffer{};
  int count = 0;
  while ((count = ::unzReadCurrentFile(archive, buffer.data(), buffer.size())) > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  requireReadable(location, count);
  // Closing the entry compares its checksum.
  requireReadable(location, ::unzCloseCurrentFile(archive));
  return text;
}

// Says whether `path` is <one folder>/manifest.json.
bool isManifest(std::string_view path) {
  return path.ends_with(kManifestName) && path.find('/') == path.size() - kManifestName.size();
}

}  // namespace

void refuseBundle(const std::string& location, const std::string& problem,
                  const std::string& remedy) {
  throw std::runtime_error(location + ": " + problem + "; " + remedy);
}

std::vector<ManifestText> readManifestTexts(const std::string& location) {
  const Archive archive = openArchive(location);
  std::vector<ManifestText> manifests;
  const std::uint64_t count = countEntries(location, archive.get());
  for (std::uint64_t index = 0; index < count; ++index) {
    requireReadable(location, index == 0 ? ::unzGoToFirstFile(archive.get())
                                         : ::unzGoToNextFile(archive.get()));
    const std::string path = readEntryName(location, archive.get());
    if (isManifest(path)) manifests.push_back({path, readEntry(location, archive.get())});
  }
  if (manifests.empty()) {
    refuseBundle(location, "the zip archive at the end of the file has no manifest",
                 kArchiveRemedy);
  }
  std::sort(manifests.begin(), manifests.end(),
            [](const auto& left, const auto& right) { return left.path < right.path; });
  return manifests;
}

}  // namespace cppmicroservices::detail
