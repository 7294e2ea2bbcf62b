#include "tessera/check/catalogue/Catalogue.hpp"

#include <algorithm>
#include <array>

namespace tessera::check::catalogue {

std::string messageOf(DiagnosticKind kind, std::size_t form,
                      std::initializer_list<std::string_view> arguments) {
  const std::string_view text = entryOf(kind).messages[form];
  std::string message;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isPlaceholder =
        text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9';
    if (!isPlaceholder) {
      message += text[i];
      continue;
    }
    const auto index = static_cast<std::size_t>(text[++i] - '1');
    if (index < arguments.size()) message += arguments.begin()[index];
  }
  return message;
}

Diagnostic makeDiagnostic(DiagnosticKind kind, std::size_t form, Span span,
                          std::initializer_list<std::string_view> arguments) {
  Diagnostic diagnostic;
  diagnostic.kind = kind;
  diagnostic.message = messageOf(kind, form, arguments);
  diagnostic.span = span;
  return diagnostic;
}

const CatalogueEntry* findEntry(std::string_view id) noexcept {
  const auto entries = catalogue();
  const auto found = std::ranges::find(entries, id, &CatalogueEntry::id);
  return found == entries.end() ? nullptr : &*found;
}

}  // namespace tessera::check::catalogue
