#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/json/Value.hpp"
#include "quenlith/export/json.hpp"

namespace foundation::json {

/// The layout: without spaces; indented by two spaces per level, with a space after each colon; or
/// without spaces and with the canonical form of numbers and strings.
enum class Form : std::uint8_t { kCompact, kIndented, kCanonical };

/// Whether members whose value is empty ("", [], {}, null, false, 0) are written.
enum class EmptyMembers : std::uint8_t { kWritten, kOmitted };

/// Appends a JSON text to a string token by token, and adds the commas, colons and line breaks.
///
/// Borrows the string, which the caller may clear between two calls. The caller must balance the
/// begin and end calls and write a key before each member of an object; this is not checked.
/// Numbers and strings are formatted by the functions of format.hpp.
class QUENLITH_JSON_EXPORT Writer {
 public:
  /// Appends to `output`, which must outlive the writer. Where empty members are omitted, the
  /// caller must not clear the string between a key and the end of its value if that may be empty.
  Writer(std::string& output, Form form, EmptyMembers emptyMembers = EmptyMembers::kWritten)
      : output(output), form(form), emptyMembers(emptyMembers) {}

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

  /// Writes `json`, which must be the text of one value in this writer's form, indented for this
  /// depth. It may also be the first part of that text; the caller then appends the rest to the
  /// string.
  void raw(std::string_view json);

  /// Writes a value with everything in it; the undefined kind is written as null. A loop: the
  /// depth is bounded by memory only. No member within it is omitted.
  void value(const Value& value);

  /// Like `value`, but for an object. It is omitted itself if it is empty.
  void object(const Object& members);

 private:
  struct Walk;

  /// What a member that turns out to be empty is undone to.
  struct MemberBegin {
    // npos: it is not a member, or not to be omitted.
    std::size_t size = std::string::npos;
    bool isFirst = true;
  };

  bool omits(bool isEmpty);
  void separate();
  void breakLine();
  void open(char bracket);
  void close(char bracket);
  void leaf(const Value& value);
  void quoted(std::string_view utf8);

  std::string& output;
  std::size_t depth = 0;
  Form form;
  EmptyMembers emptyMembers;
  bool isFirst = true;
  bool isAfterKey = false;
  // Whether a value is being written with everything in it.
  bool isVerbatim = false;
  // Of the member written last, and of each container that is open; only where empty members are
  // omitted.
  MemberBegin lastKey;
  std::vector<MemberBegin> containers;
};

}  // namespace foundation::json
