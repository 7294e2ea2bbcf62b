#include "quenlith/syntax/MarkerParts.hpp"

#include <array>
#include <cstring>
#include <memory>
#include <new>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/Lexer.hpp"
#include "foundation/json/parse.hpp"
#include "quenlith/syntax/MarkerMatch.hpp"

namespace quenlith::syntax {

namespace {

// The text that a match was found in, from its element to its last part.
std::u16string_view extentOf(const MarkerMatch& match) noexcept {
  const char16_t* end = match.element.data() + match.element.size();
  for (const std::u16string_view part : {match.type, match.id, match.data}) {
    if (!part.empty()) end = part.data() + part.size();
  }
  return {match.element.data(), static_cast<std::size_t>(end - match.element.data())};
}

}  // namespace

MarkerParts::MarkerParts(const MarkerMatch& match) noexcept {
  const std::u16string_view extent = extentOf(match);
  const auto place = [extent](std::u16string_view part) {
    if (part.empty()) return Part();
    return Part{static_cast<std::size_t>(part.data() - extent.data()), part.size()};
  };
  elementPart = place(match.element);
  typePart = place(match.type);
  idPart = place(match.id);
  dataPart = place(match.data);
  std::memcpy(const_cast<char16_t*>(text()), extent.data(), extent.size() * sizeof(char16_t));
}

MarkerParts::~MarkerParts() {
  delete readData.load(std::memory_order_relaxed);
}

MarkerParts::Pointer MarkerParts::make(const MarkerMatch& match) {
  const bool isQuoted = !match.id.empty() && match.id.front() == u'"';
  if (isQuoted) return unquote(match);
  const bool isBare = match.type.empty() && match.id.empty() && match.data.empty();
  return isBare && match.known != KnownElement::kOther ? bare(match.known) : copy(match);
}

MarkerParts::Pointer MarkerParts::copy(const MarkerMatch& match) {
  const std::size_t textBytes = extentOf(match).size() * sizeof(char16_t);
  return Pointer(new (::operator new(sizeof(MarkerParts) + textBytes)) MarkerParts(match), false);
}

// Writes the match anew, with the id for the quoted one.
MarkerParts::Pointer MarkerParts::unquote(const MarkerMatch& match) {
  foundation::json::Lexer lexer(match.id);
  lexer.next();
  const fl::i18n::ustring id = lexer.text();

  fl::i18n::ustring text(match.element);
  text.append(match.type).append(id).append(match.data);
  std::u16string_view rest = text;
  const auto take = [&rest](std::size_t length) {
    const std::u16string_view part = rest.substr(0, length);
    rest.remove_prefix(length);
    return part;
  };
  MarkerMatch unquoted;
  unquoted.element = take(match.element.size());
  unquoted.type = take(match.type.size());
  unquoted.id = take(id.size());
  unquoted.data = rest;
  const bool isBare = text.size() == match.element.size();
  return isBare && match.known != KnownElement::kOther ? bare(match.known) : copy(unquoted);
}

const MarkerParts::Pointer& MarkerParts::bare(KnownElement element) {
  const auto makeBare = [](std::u16string_view name) {
    MarkerMatch match;
    match.element = name;
    return copy(match);
  };
  // In the order of the enumeration.
  static const std::array<Pointer, 4> kBare{makeBare(u"control"), makeBare(u"output"),
                                            makeBare(u"task"), makeBare(u"text")};
  return kBare[static_cast<std::size_t>(element)];
}

const MarkerParts::Data& MarkerParts::data() const {
  if (const Data* data = readData.load(std::memory_order_acquire)) return *data;
  static const Data kNone;
  if (dataText().empty()) return kNone;
  auto read = std::make_unique<const Data>(
      std::move(foundation::json::parseEmbeddedObject(dataText(), 0)->object));
  const Data* first = nullptr;
  // Another thread may have been faster: what it read is as good, and is in use.
  const bool isFirst =
      readData.compare_exchange_strong(first, read.get(), std::memory_order_acq_rel);
  return isFirst ? *read.release() : *first;
}

void MarkerParts::end() const noexcept {
  auto* parts = const_cast<MarkerParts*>(this);
  parts->~MarkerParts();
  ::operator delete(parts);
}

}  // namespace quenlith::syntax
