#include <zip.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string_view>

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
    "append a zip archive that holds <symbolic name>/manifest.json to the library, after it was "
    "stripped";

// libzip converts the times of entries to local time, with data of the C library that all threads
// share and whose lock the thread sanitizer does not see.
std::mutex archives;

using Archive = std::unique_ptr<zip_t, decltype(&zip_discard)>;
using ArchiveFile = std::unique_ptr<zip_file_t, decltype(&zip_fclose)>;

std::uint32_t littleEndian(std::string_view bytes, std::size_t place) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;)
    value = value << 8 | static_cast<unsigned char>(bytes[place + i]);
  return value;
}

// Returns the position in the file that the archive's offsets are relative to. `tail` is the end of
// the file, which has `fileBytes` bytes.
std::uint64_t archiveStart(const std::string& location, std::string_view tail,
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
  return directoryEnd - directoryEndByOffset;
}

std::uint64_t findArchive(const std::string& location) {
  std::ifstream file(location, std::ios::binary | std::ios::ate);
  const std::streamoff fileBytes = file ? std::streamoff{file.tellg()} : -1;
  const auto tailBytes = std::min<std::streamoff>(fileBytes, kEndBytes + kLongestComment);
  std::string tail(static_cast<std::size_t>(std::max<std::streamoff>(tailBytes, 0)), '\0');
  file.seekg(-tailBytes, std::ios::end);
  if (!file.read(tail.data(), tailBytes)) {
    refuseBundle(location, std::string("the file cannot be read (") + std::strerror(errno) + ")",
                 "give the path of the library of a bundle");
  }
  return archiveStart(location, tail, static_cast<std::uint64_t>(fileBytes));
}

[[noreturn]] void refuseArchive(const std::string& location, const std::string& problem) {
  refuseBundle(location, "the zip archive at the end of the file is damaged (" + problem + ")",
               kArchiveRemedy);
}

Archive openArchive(const std::string& location) {
  const std::uint64_t start = findArchive(location);
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* const source = zip_source_file_create(location.c_str(), start, -1, &error);
  Archive archive(source == nullptr ? nullptr : zip_open_from_source(source, ZIP_RDONLY, &error),
                  zip_discard);
  const std::string problem = archive ? "" : zip_error_strerror(&error);
  zip_error_fini(&error);
  if (archive) return archive;
  zip_source_free(source);
  refuseArchive(location, problem);
}

std::string readEntry(const std::string& location, zip_t* archive, std::uint64_t index) {
  const ArchiveFile file(zip_fopen_index(archive, index, 0), zip_fclose);
  if (!file) refuseArchive(location, zip_strerror(archive));
  std::string text;
  std::array<char, 4096> buffer{};
  zip_int64_t count = 0;
  while ((count = zip_fread(file.get(), buffer.data(), buffer.size())) > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  if (count < 0) refuseArchive(location, zip_file_strerror(file.get()));
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
  const std::lock_guard lock(archives);
  const Archive archive = openArchive(location);
  std::vector<ManifestText> manifests;
  const auto count = static_cast<std::uint64_t>(zip_get_num_entries(archive.get(), 0));
  for (std::uint64_t index = 0; index < count; ++index) {
    const std::string path = zip_get_name(archive.get(), index, ZIP_FL_ENC_GUESS);
    if (isManifest(path)) manifests.push_back({path, readEntry(location, archive.get(), index)});
  }
  if (manifests.empty()) {
    refuseBundle(location, "the zip archive at the end of the file has no manifest",
                 kArchiveRemedy);
  }
  return manifests;
}

}  // namespace cppmicroservices::detail
