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
/// Its data is kept as the text that was found good and is read when somebody first asks: most
/// markers are never asked. Several threads may ask.
class MarkerParts {
 public:
  using Data = std::map<std::string, foundation::json::Value>;
  using Pointer = boost::intrusive_ptr<const MarkerParts>;

  /// Makes the parts of a successful match. Markers of a known element that have nothing else
  /// share one object each.
  static Pointer make(const MarkerMatch& match);

  MarkerParts(const MarkerParts&) = delete;
  MarkerParts& operator=(const MarkerParts&) = delete;

  std::u16string_view element() const noexcept { return view(elementPart); }
  std::u16string_view type() const noexcept { return view(typePart); }
  std::u16string_view id() const noexcept { return view(idPart); }
  /// The data as it was written, from brace to brace; empty when there was none.
  std::u16string_view dataText() const noexcept { return view(dataPart); }
  /// Throws std::bad_alloc, and can then be asked again.
  QUENLITH_MARKERS_EXPORT const Data& data() const;

 private:
  /// A part of the text behind the object.
  struct Part {
    std::size_t begin = 0;
    std::size_t length = 0;
  };

  /// Copies the text from the element of `match` to its data, which stand in one text.
  explicit MarkerParts(const MarkerMatch& match) noexcept;
  ~MarkerParts();
  static Pointer copy(const MarkerMatch& match);
  static Pointer unquote(const MarkerMatch& match);
  static const Pointer& bare(KnownElement element);

  friend void intrusive_ptr_add_ref(const MarkerParts* parts) noexcept {
    parts->references.fetch_add(1, std::memory_order_relaxed);
  }
  friend void intrusive_ptr_release(const MarkerParts* parts) noexcept {
    // The last handle need not write the count.
    if (parts->references.load(std::memory_order_acquire) == 1 ||
        parts->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      parts->end();
    }
  }
  QUENLITH_MARKERS_EXPORT void end() const noexcept;

  const char16_t* text() const noexcept { return reinterpret_cast<const char16_t*>(this + 1); }
  std::u16string_view view(Part part) const noexcept { return {text() + part.begin, part.length}; }

  mutable std::atomic<const Data*> readData{nullptr};
  mutable std::atomic<std::uint32_t> references{1};
  Part elementPart;
  Part typePart;
  Part idPart;
  Part dataPart;
};

}  // namespace quenlith::syntax
