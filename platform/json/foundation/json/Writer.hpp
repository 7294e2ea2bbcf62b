#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/json/Value.hpp"
#include "quenlith/export/json.hpp"

namespace foundation::json {

/// How a text is laid out: without blanks, indented by two blanks with a blank behind each colon,
/// or without blanks and with the canonical spelling of numbers and texts.
enum class Form : std::uint8_t { kCompact, kIndented, kCanonical };

/// Appends a JSON text to a string piece by piece, with the commas, colons and line breaks that
/// belong between the pieces.
///
/// Borrows the string, which the caller may empty between two calls. The caller opens and closes
/// containers in pairs and gives each member of an object a key; this is not checked. Numbers
/// and texts are spelt as in write.hpp.
class QUENLITH_JSON_EXPORT Writer {
 public:
  Writer(std::string& target, Form spelling) : output(target), form(spelling) {}

  void beginObject() { open('{'); }
  void endObject() { close('}'); }
  void beginArray() { open('['); }
  void endArray() { close(']'); }

  /// Writes the key of the next member, escaped like any text.
  void key(std::string_view name);

  void text(std::u16string_view value);
  void text(std::string_view utf8);
  void number(double value);
  void number(float value);
  void number(std::int64_t value);
  void number(std::uint64_t value);
  void boolean(bool value);
  void null();

  /// Writes `json`, the text of one value in this writer's form and at this depth, or its first
  /// part; the caller then appends the rest to the string.
  void raw(std::string_view json);

  /// Writes a value with all that it holds. A loop: the depth is bounded by memory only.
  void value(const Value& value);

  /// Like `value`, but of the members of an object.
  void object(const Object& members);

 private:
  struct Walk;

  void separate();
  void breakLine();
  void open(char bracket);
  void close(char bracket);
  void leaf(const Value& value);
  void quoted(std::string_view utf8);

  std::string& output;
  std::size_t depth = 0;
  Form form;
  bool isFirst = true;
  bool isAfterKey = false;
};

}  // namespace foundation::json
