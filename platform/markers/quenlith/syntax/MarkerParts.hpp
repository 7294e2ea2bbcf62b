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
  /// Returns the parts of the markers that consist of a known element and nothing else.
  static const Pointer& bare(KnownElement element);

  MarkerParts(const MarkerParts&) = delete;
  MarkerParts& operator=(const MarkerParts&) = delete;

  std::u16string_view element() const noexcept { return view(elementPart); }
  std::u16string_view type() const noexcept { return view(typePart); }
  std::u16string_view id() const noexcept { return view(idPart); }
  /// The data as it was written, from brace to brace; empty when there is none.
  std::u16string_view dataText() const noexcept { return view(dataPart); }
  /// The canonical text of a marker that consists of a known element and nothing else; empty for
  /// other markers.
  std::u16string_view bareText() const noexcept {
    const bool isBare = references.load(std::memory_order_relaxed) == kNotCounted;
    return isBare ? view({0, elementPart.begin + elementPart.length + 1}) : std::u16string_view();
  }
  /// Parses the data on the first call. May throw std::bad_alloc; a later call tries again.
  QUENLITH_MARKERS_EXPORT const Data& data() const;

 private:
  /// A part of the text that follows the object in memory.
  struct Part {
    std::size_t begin = 0;
    std::size_t length = 0;
  };

  /// Copies `extent`, which has the parts of `match`; all must be views of one text. The memory
  /// after the object must have room for it.
  MarkerParts(const MarkerMatch& match, std::u16string_view extent) noexcept;
  ~MarkerParts();
  static Pointer copy(const MarkerMatch& match, std::u16string_view extent);
  static Pointer unquote(const MarkerMatch& match);

  friend void intrusive_ptr_add_ref(const MarkerParts* parts) noexcept {
    if (parts->references.load(std::memory_order_relaxed) == kNotCounted) return;
    parts->references.fetch_add(1, std::memory_order_relaxed);
  }
  friend void intrusive_ptr_release(const MarkerParts* parts) noexcept {
    const std::uint32_t count = parts->references.load(std::memory_order_acquire);
    if (count == kNotCounted) return;
    // The last handle does not write the count, which saves an atomic read-modify-write: nobody
    // else can copy the only handle at the same time.
    if (count == 1 || parts->references.fetch_sub(1, std::memory_order_acq_rel) == 1) parts->end();
  }
  QUENLITH_MARKERS_EXPORT void end() const noexcept;

  const char16_t* text() const noexcept { return reinterpret_cast<const char16_t*>(this + 1); }
  std::u16string_view view(Part part) const noexcept { return {text() + part.begin, part.length}; }

  // The count of the parts that `bare` returns, which are never destroyed. Each parsed marker uses
  // one of them, on all threads, so counting would write the same cache line from all of them.
  static constexpr std::uint32_t kNotCounted = 0;

  // Null until the data has been parsed. Owned.
  mutable std::atomic<const Data*> parsedData{nullptr};
  mutable std::atomic<std::uint32_t> references{1};
  Part elementPart;
  Part typePart;
  Part idPart;
  Part dataPart;
};

}  // namespace quenlith::syntax
