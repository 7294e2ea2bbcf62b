#include "foundation/json/Value.hpp"

#include <array>
#include <cmath>
#include <iterator>
#include <stdexcept>

namespace foundation::json {

namespace {

constexpr std::array<const char*, 10> kNames{
    traits<Undefined>::name,    traits<Null>::name,        traits<bool>::name,
    traits<double>::name,       traits<std::string>::name, traits<Array>::name,
    traits<Object>::name,       traits<float>::name,       traits<std::int64_t>::name,
    traits<std::uint64_t>::name};

template <typename Number>
bool equalNumbers(Number left, Number right) {
  return left == right || (std::isnan(left) && std::isnan(right));
}

// All NaNs are equal, so they share a hash. std::hash gives both zeros the same one.
template <typename Number>
std::size_t hashOfNumber(Number number) {
  return std::isnan(number) ? 0x7FF8 : std::hash<Number>()(number);
}

void mix(std::size_t& hash, std::size_t part) {
  constexpr std::size_t kMultiplier = 0x9E3779B97F4A7C15U;  // 2^64 divided by the golden ratio
  hash = (hash ^ part) * kMultiplier;
  hash ^= hash >> 32U;
}

}  // namespace

struct Value::Loops {
  // Whether the value is a container with children.
  static bool isFilled(const Value& value) {
    if (const Array* array = value.getIf<Array>()) {
      return !array->empty();
    }
    const Object* object = value.getIf<Object>();
    return object != nullptr && !object->empty();
  }

  // The next four are for filled containers only.

  static std::size_t count(const Value& value) {
    const Array* array = value.getIf<Array>();
    return array != nullptr ? array->size() : std::get<Object>(value.data).size();
  }

  static Value& first(Value& value) {
    Array* array = value.getIf<Array>();
    return array != nullptr ? array->front() : std::get<Object>(value.data).begin()->second;
  }

  static Value& last(Value& value) {
    Array* array = value.getIf<Array>();
    return array != nullptr ? array->back() : std::prev(std::get<Object>(value.data).end())->second;
  }

  static void dropLast(Value& value) {
    if (Array* array = value.getIf<Array>()) {
      array->pop_back();
      return;
    }
    auto& object = std::get<Object>(value.data);
    object.erase(std::prev(object.end()));
  }

  static bool hasFilledChild(const Value& value) {
    if (const Array* array = value.getIf<Array>()) {
      for (const Value& child : *array) {
        if (isFilled(child)) {
          return true;
        }
      }
    } else if (const Object* object = value.getIf<Object>()) {
      for (const auto& [key, child] : *object) {
        if (isFilled(child)) {
          return true;
        }
      }
    }
    return false;
  }

  // Destroys a tree without recursion and without allocating, by reversing links (as in
  // Deutsch-Schorr-Waite traversal). The children of `current` are dropped from the last to the
  // first. To descend into a filled child, the child's first child moves up into the slot that the
  // child leaves, and `current` itself moves into the slot of that first child. Because that slot
  // is dropped last, the loop returns to the parent after the rest of the child is gone. A parent
  // without other children is not kept.
  static void release(Value& root) noexcept {
    Value current(std::move(root));
    while (isFilled(current)) {
      if (!isFilled(last(current))) {
        dropLast(current);
        continue;
      }
      Value next(std::move(last(current)));
      if (count(current) > 1) {
        last(current).swap(first(next));
        first(next).swap(current);
      }
      current.swap(next);
    }
  }

  template <typename Source, typename Target>
  struct Pair {
    Source* source;
    Target* target;
  };
  using Copies = std::vector<Pair<const Value, Value>>;
  using Comparisons = std::vector<Pair<const Value, const Value>>;

  static void copyNode(const Value& source, Value& target, Copies& pending) {
    if (isFilled(source)) {
      pending.push_back({&source, &target});
    } else {
      target.data = source.data;
    }
  }

  static void copyChildren(const Value& source, Value& target, Copies& pending) {
    if (const Array* array = source.getIf<Array>()) {
      Array& copy = target.data.emplace<Array>(array->size());
      for (std::size_t index = 0; index < array->size(); ++index) {
        copyNode((*array)[index], copy[index], pending);
      }
      return;
    }
    Object& copy = target.data.emplace<Object>();
    for (const auto& [key, child] : std::get<Object>(source.data)) {
      copyNode(child, copy.try_emplace(copy.end(), key)->second, pending);
    }
  }

  static bool equalLeaves(const Value& left, const Value& right) {
    if (const double* number = left.getIf<double>()) {
      return equalNumbers(*number, std::get<double>(right.data));
    }
    if (const float* number = left.getIf<float>()) {
      return equalNumbers(*number, std::get<float>(right.data));
    }
    return left.data == right.data;
  }

  static bool equalNodes(const Value& left, const Value& right, Comparisons& pending) {
    if (left.kind() != right.kind() || isFilled(left) != isFilled(right)) {
      return false;
    }
    if (!isFilled(left)) {
      return equalLeaves(left, right);
    }
    pending.push_back({&left, &right});
    return count(left) == count(right);
  }

  static bool equalChildren(const Value& left, const Value& right, Comparisons& pending) {
    if (const Array* array = left.getIf<Array>()) {
      const Array& other = std::get<Array>(right.data);
      for (std::size_t index = 0; index < array->size(); ++index) {
        if (!equalNodes((*array)[index], other[index], pending)) {
          return false;
        }
      }
      return true;
    }
    auto other = std::get<Object>(right.data).begin();
    for (const auto& [key, child] : std::get<Object>(left.data)) {
      if (key != other->first || !equalNodes(child, other->second, pending)) {
        return false;
      }
      ++other;
    }
    return true;
  }

  static std::size_t hashLeaf(const Value& value) {
    if (const double* number = value.getIf<double>()) {
      return hashOfNumber(*number);
    }
    if (const float* number = value.getIf<float>()) {
      return hashOfNumber(*number);
    }
    if (const std::string* text = value.getIf<std::string>()) {
      return std::hash<std::string>()(*text);
    }
    return hashPlain(value);
  }

  // Hashes an integer or a boolean. Every other leaf has no content, so its hash is 0.
  static std::size_t hashPlain(const Value& value) {
    if (const bool* flag = value.getIf<bool>()) {
      return *flag ? 1 : 0;
    }
    if (const std::int64_t* number = value.getIf<std::int64_t>()) {
      return static_cast<std::size_t>(*number);
    }
    const std::uint64_t* number = value.getIf<std::uint64_t>();
    return number != nullptr ? *number : 0;
  }

  static void hashNode(const Value& value, std::size_t& hash, std::vector<const Value*>& pending) {
    mix(hash, static_cast<std::size_t>(value.kind()));
    if (isFilled(value)) {
      pending.push_back(&value);
      mix(hash, count(value));
    } else {
      mix(hash, hashLeaf(value));
    }
  }

  static void hashChildren(const Value& value, std::size_t& hash,
                           std::vector<const Value*>& pending) {
    if (const Array* array = value.getIf<Array>()) {
      for (const Value& child : *array) {
        hashNode(child, hash, pending);
      }
      return;
    }
    for (const auto& [key, child] : std::get<Object>(value.data)) {
      mix(hash, std::hash<std::string>()(key));
      hashNode(child, hash, pending);
    }
  }
};

Value::Value(const Value& other) : Value() {
  Loops::Copies pending;
  Loops::copyNode(other, *this, pending);
  while (!pending.empty()) {
    const auto [source, target] = pending.back();
    pending.pop_back();
    Loops::copyChildren(*source, *target, pending);
  }
}

Value::Value(Value&& other) noexcept : data(std::move(other.data)) {
  other.data.emplace<Undefined>();
}

Value& Value::operator=(const Value& other) {
  Value copy(other);
  swap(copy);
  return *this;
}

// Moves through a temporary, because `other` may be this value or a part of it.
Value& Value::operator=(Value&& other) noexcept {
  Value moved(std::move(other));
  swap(moved);
  return *this;
}

Value::~Value() {
  if (Loops::hasFilledChild(*this)) {
    Loops::release(*this);
  }
}

bool operator==(const Value& left, const Value& right) {
  Value::Loops::Comparisons pending;
  if (!Value::Loops::equalNodes(left, right, pending)) {
    return false;
  }
  while (!pending.empty()) {
    const auto [source, target] = pending.back();
    pending.pop_back();
    if (!Value::Loops::equalChildren(*source, *target, pending)) {
      return false;
    }
  }
  return true;
}

std::size_t Value::hash() const {
  std::size_t hash = 0;
  std::vector<const Value*> pending;
  Loops::hashNode(*this, hash, pending);
  while (!pending.empty()) {
    const Value* next = pending.back();
    pending.pop_back();
    Loops::hashChildren(*next, hash, pending);
  }
  return hash;
}

void Value::throwInvalidConversion(Kind wanted) const {
  throw std::runtime_error(std::string("invalid conversion: ") + nameOf(kind()) + " to " +
                           nameOf(wanted));
}

const char* nameOf(Kind kind) noexcept {
  return kNames[static_cast<std::size_t>(kind)];
}

}  // namespace foundation::json
