#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace tessera::html {

/// HTML that this program has written, to be added as it is.
struct Markup {
  std::string_view html;
};

/// Appends HTML to a string.
///
/// String literals are markup and added as they are. Every other text is escaped, so that no text
/// of a file can become markup. Text may be added between tags only, never within a tag: all
/// attributes are literals and numbers.
class HtmlText {
 public:
  /// Borrows `output`.
  explicit HtmlText(std::string& output) : output(output) {}

  template <typename... Parts>
  void add(const Parts&... parts) {
    (append(parts), ...);
  }

  /// Appends a number as JSON writes it.
  void addNumber(double number);

  /// Appends text for an element that cannot have other elements, such as the title of a page.
  void addPlain(std::string_view utf8);

  // Whether it points to a literal is not known.
  template <typename Pointer>
  requires std::convertible_to<Pointer, const char*> && std::is_pointer_v<Pointer>
  void append(const Pointer&) = delete;
  void append(bool) = delete;

 private:
  template <std::size_t size>
  void append(const char (&literal)[size]) {
    output.append(literal, size - 1);
  }
  void append(Markup markup) { output += markup.html; }
  void append(std::u16string_view text);
  /// Bytes that are not UTF-8 become U+FFFD.
  void append(std::string_view utf8);
  template <std::unsigned_integral Number>
  requires(!std::same_as<Number, bool>) void append(Number number) {
    output += std::to_string(number);
  }
  std::string& output;
};

}  // namespace tessera::html
