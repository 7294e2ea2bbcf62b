#include "foundation/json/Writer.hpp"

#include <vector>

#include "foundation/json/format.hpp"

namespace foundation::json {

// The stack of the containers that are being written, the innermost one last, each with its next
// child.
struct Writer::Walk {
  struct Frame {
    const Array* array;
    Array::const_iterator element;
    const Object* object;
    Object::const_iterator member;
  };

  explicit Walk(Writer& writer) : writer(writer) {}

  void enter(const Value& value) {
    if (const Array* array = value.getIf<Array>()) {
      writer.beginArray();
      frames.push_back({array, array->begin(), nullptr, {}});
    } else if (const Object* object = value.getIf<Object>()) {
      enter(*object);
    } else {
      writer.leaf(value);
    }
  }

  void enter(const Object& object) {
    writer.beginObject();
    frames.push_back({nullptr, {}, &object, object.begin()});
  }

  // A step must not use its frame after entering a child: pushing a frame may move the others.
  void run() {
    while (!frames.empty()) {
      Frame& frame = frames.back();
      frame.array != nullptr ? stepArray(frame) : stepObject(frame);
    }
  }

 private:
  void stepArray(Frame& frame) {
    if (frame.element == frame.array->end()) {
      writer.endArray();
      frames.pop_back();
    } else {
      enter(*frame.element++);
    }
  }

  void stepObject(Frame& frame) {
    if (frame.member == frame.object->end()) {
      writer.endObject();
      frames.pop_back();
      return;
    }
    const auto& [key, child] = *frame.member++;
    writer.key(key);
    enter(child);
  }

  Writer& writer;
  std::vector<Frame> frames;
};

void Writer::key(std::string_view name) {
  lastKey = {output.size(), isFirst};
  separate();
  quoted(name);
  output.append(form == Form::kIndented ? ": " : ":");
  isAfterKey = true;
}

void Writer::text(std::u16string_view value) {
  if (omits(value.empty())) return;
  separate();
  appendQuoted(output, value);
}

void Writer::text(std::string_view utf8) {
  if (omits(utf8.empty())) return;
  separate();
  quoted(utf8);
}

void Writer::number(double value) {
  if (omits(value == 0)) return;
  separate();
  form == Form::kCanonical ? appendCanonicalNumber(output, value) : appendNumber(output, value);
}

void Writer::number(float value) {
  if (omits(value == 0)) return;
  separate();
  appendNumber(output, value);
}

void Writer::number(std::int64_t value) {
  if (omits(value == 0)) return;
  separate();
  appendInteger(output, value);
}

void Writer::number(std::uint64_t value) {
  if (omits(value == 0)) return;
  separate();
  appendInteger(output, value);
}

void Writer::boolean(bool value) {
  if (omits(!value)) return;
  separate();
  output.append(value ? "true" : "false");
}

void Writer::null() {
  if (omits(true)) return;
  separate();
  output.append("null");
}

void Writer::raw(std::string_view json) {
  separate();
  output.append(json);
}

void Writer::value(const Value& value) {
  isVerbatim = true;
  Walk walk(*this);
  walk.enter(value);
  walk.run();
  isVerbatim = false;
}

void Writer::object(const Object& members) {
  if (omits(members.empty())) return;
  isVerbatim = true;
  Walk walk(*this);
  walk.enter(members);
  walk.run();
  isVerbatim = false;
}

// Writes what separates a token from the one before it: nothing after a key, and nothing at depth
// 0.
void Writer::separate() {
  if (isAfterKey) {
    isAfterKey = false;
    return;
  }
  if (depth != 0) {
    output.append(isFirst ? "" : ",");
    breakLine();
  }
  isFirst = false;
}

void Writer::breakLine() {
  if (form == Form::kIndented) {
    output.append(1, '\n').append(depth * 2, ' ');
  }
}

/// Takes the key back if its value is empty and such members are omitted. Returns whether it did.
bool Writer::omits(bool isEmpty) {
  if (!isEmpty || !isAfterKey || isVerbatim || emptyMembers == EmptyMembers::kWritten) return false;
  output.resize(lastKey.size);
  isFirst = lastKey.isFirst;
  isAfterKey = false;
  return true;
}

void Writer::open(char bracket) {
  if (emptyMembers == EmptyMembers::kOmitted) {
    containers.push_back(isAfterKey && !isVerbatim ? lastKey : MemberBegin());
  }
  separate();
  output.append(1, bracket);
  ++depth;
  isFirst = true;
}

void Writer::close(char bracket) {
  --depth;
  if (emptyMembers == EmptyMembers::kOmitted) {
    const MemberBegin begin = containers.back();
    containers.pop_back();
    if (isFirst && begin.size != std::string::npos) {
      output.resize(begin.size);
      isFirst = begin.isFirst;
      return;
    }
  }
  if (!isFirst) {
    breakLine();
  }
  output.append(1, bracket);
  isFirst = false;
}

void Writer::leaf(const Value& value) {
  switch (value.kind()) {
    case Kind::kBoolean:
      return boolean(value.get<bool>());
    case Kind::kDouble:
      return number(value.get<double>());
    case Kind::kString:
      return text(value.get<std::string>());
    case Kind::kFloat:
      return number(value.get<float>());
    case Kind::kSigned:
      return number(value.get<std::int64_t>());
    case Kind::kUnsigned:
      return number(value.get<std::uint64_t>());
    default:
      return null();
  }
}

void Writer::quoted(std::string_view utf8) {
  form == Form::kCanonical ? appendCanonicalQuoted(output, utf8) : appendQuoted(output, utf8);
}

}  // namespace foundation::json
