#pragma once

#include <atomic>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "foundation/json/Value.hpp"
#include "quenlith/export/markers.hpp"

namespace quenlith::syntax {

enum class KnownElement : std::uint8_t;
struct MarkerMatch;

/// What the copies of one marker share: its parts and their text, in one block of memory.
///
/// The data is stored as its validated text and parsed on first access: the data of most markers is
/// never read. Thread-safe.
class MarkerParts {
 public:
  using Data = std::map<std::string, foundation::json::Value>;
  using Pointer = boost::intrusive_ptr<const MarkerParts>;

  /// Makes the parts of a successful match. All markers that consist of the same known element and
  /// nothing else share one object.
  static Pointer make(const MarkerMatch& match);

  MarkerParts(const MarkerParts&) = delete;
  MarkerParts& operator=(const MarkerParts&) = delete;

  std::u16string_view element() const noexcept { return view(elementPart); }
  std::u16string_view type() const noexcept { return view(typePart); }
  std::u16string_view id() const noexcept { return view(idPart); }
  /// The data as it was written, from brace to brace; empty when there is none.
  std::u16string_view dataText() const noexcept { return view(dataPart); }
  /// Parses the data on the first call. May throw std::bad_alloc; a later call tries again.
  QUENLITH_MARKERS_EXPORT const Data& data() const;

 private:
  /// A part of the text that follows the object in memory.
  struct Part {
    std::size_t begin = 0;
    std::size_t length = 0;
  };

  /// Copies the text of `match` from its element to its last part; all must be views of one text.
  /// The memory after the object must have room for it.
  explicit MarkerParts(const MarkerMatch& match) noexcept;
  ~MarkerParts();
  static Pointer copy(const MarkerMatch& match);
  static Pointer unquote(const MarkerMatch& match);
  static const Pointer& bare(KnownElement element);

  friend void intrusive_ptr_add_ref(const MarkerParts* parts) noexcept {
    parts->references.fetch_add(1, std::memory_order_relaxed);
  }
  friend void intrusive_ptr_release(const MarkerParts* parts) noexcept {
    // The last handle does not write the count, which saves an atomic read-modify-write: nobody
    // else can copy the only handle at the same time.
    if (parts->references.load(std::memory_order_acquire) == 1 ||
        parts->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      parts->end();
    }
  }
  QUENLITH_MARKERS_EXPORT void end() const noexcept;

  const char16_t* text() const noexcept { return reinterpret_cast<const char16_t*>(this + 1); }
  std::u16string_view view(Part part) const noexcept { return {text() + part.begin, part.length}; }

  // Null until the data has been parsed. Owned.
  mutable std::atomic<const Data*> parsedData{nullptr};
  mutable std::atomic<std::uint32_t> references{1};
  Part elementPart;
  Part typePart;
  Part idPart;
  Part dataPart;
};

}  // namespace quenlith::syntax
