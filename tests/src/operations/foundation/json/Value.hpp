#pragma once

#include <vector>

namespace foundation::json {

class Value {
 public:
  explicit Value(double number);
  Value(std::vector<Value> values);
  // The kind is tested before the accessor is called.
  template <class T>
  bool is() const;
  template <class T>
  const T& get() const;
};

}  // namespace foundation::json
