#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "tessera/check/catalogue/CheckedFile.hpp"
#include "tessera/hashing/KeyedMap.hpp"

namespace tessera::check {

/// Passes checked files on in their order, but holds a file with an unpaired task marker, and those
/// after it, until all files are known: exactly one other may have a marker with its id, the
/// partner.
class HeldFiles {
 public:
  using Take = std::function<void(const catalogue::CheckedFile&)>;

  explicit HeldFiles(Take take) : take(std::move(take)) {}

  void add(catalogue::CheckedFile file);

  /// Passes on the files that are held; call it once, after the last file.
  void finish();

 private:
  /// Where an unpaired marker is.
  struct Place {
    std::size_t file = 0;
    catalogue::Span span;
  };

  void explainUnpaired(std::size_t index);

  Take take;
  std::deque<catalogue::CheckedFile> held;
  // The first three files with an unpaired marker of each id.
  hashing::KeyedMap<std::u16string, std::vector<Place>> places;
};

}  // namespace tessera::check
