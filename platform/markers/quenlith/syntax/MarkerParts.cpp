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

std::u16string_view lastPartOf(const MarkerMatch& match) noexcept {
  if (!match.data.empty()) return match.data;
  if (!match.id.empty()) return match.id;
  return match.type.empty() ? match.element : match.type;
}

// The text of a match from its element to the end of its last part.
std::u16string_view extentOf(const MarkerMatch& match) noexcept {
  const std::u16string_view last = lastPartOf(match);
  const char16_t* end = last.data() + last.size();
  return {match.element.data(), static_cast<std::size_t>(end - match.element.data())};
}

}  // namespace

MarkerParts::MarkerParts(const MarkerMatch& match, std::u16string_view extent) noexcept {
  const auto partOf = [extent](std::u16string_view part) {
    if (part.empty()) return Part();
    return Part{static_cast<std::size_t>(part.data() - extent.data()), part.size()};
  };
  elementPart = partOf(match.element);
  typePart = partOf(match.type);
  idPart = partOf(match.id);
  dataPart = partOf(match.data);
  std::memcpy(const_cast<char16_t*>(text()), extent.data(), extent.size() * sizeof(char16_t));
}

MarkerParts::~MarkerParts() {
  delete parsedData.load(std::memory_order_relaxed);
}

MarkerParts::Pointer MarkerParts::make(const MarkerMatch& match) {
  const bool isQuoted = !match.id.empty() && match.id.front() == u'"';
  if (isQuoted) return unquote(match);
  const bool isBare = match.type.empty() && match.id.empty() && match.data.empty();
  if (isBare && match.known != KnownElement::kOther) return bare(match.known);
  return copy(match, extentOf(match));
}

MarkerParts::Pointer MarkerParts::copy(const MarkerMatch& match, std::u16string_view extent) {
  void* block = ::operator new(sizeof(MarkerParts) + extent.size() * sizeof(char16_t));
  return Pointer(new (block) MarkerParts(match, extent), false);
}

// Makes the parts with the decoded id. They are copied into one text first, because the constructor
// expects all parts to be views of one text.
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
  if (isBare && match.known != KnownElement::kOther) return bare(match.known);
  return copy(unquoted, text);
}

const MarkerParts::Pointer& MarkerParts::bare(KnownElement element) {
  const auto makeBare = [](std::u16string_view name) {
    const std::u16string_view opening = u"%<@";
    const fl::i18n::ustring text = fl::i18n::ustring(opening).append(name).append(1, u'>');
    MarkerMatch match;
    match.element = std::u16string_view(text).substr(opening.size(), name.size());
    Pointer parts = copy(match, text);
    parts->references.store(kNotCounted, std::memory_order_relaxed);
    return parts;
  };
  // In the order of KnownElement.
  static const std::array<Pointer, 4> kBare{makeBare(u"control"), makeBare(u"output"),
                                            makeBare(u"task"), makeBare(u"text")};
  return kBare[static_cast<std::size_t>(element)];
}

const MarkerParts::Data& MarkerParts::data() const {
  if (const Data* data = parsedData.load(std::memory_order_acquire)) return *data;
  static const Data kNone;
  if (dataText().empty()) return kNone;
  auto parsed = std::make_unique<const Data>(
      std::move(foundation::json::parseEmbeddedObject(dataText(), 0)->object));
  const Data* first = nullptr;
  // If another thread was faster, its result is kept, since it may be in use already.
  const bool isFirst =
      parsedData.compare_exchange_strong(first, parsed.get(), std::memory_order_acq_rel);
  return isFirst ? *parsed.release() : *first;
}

void MarkerParts::end() const noexcept {
  auto* parts = const_cast<MarkerParts*>(this);
  parts->~MarkerParts();
  ::operator delete(parts);
}

}  // namespace quenlith::syntax
