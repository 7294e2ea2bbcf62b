#pragma once

namespace kd::zero {

/// A handle to an object of the class `Impl`.
template <class Impl>
class Handle {
 public:
  explicit operator bool() const;
  Impl* get() const;
  Impl* operator->() const;
};

class Model {};

template <class T>
class ElementSequence {
 public:
  void add(T element);
  // A task is closed by reading the first child of its header.
  bool empty() const;
  const T& operator[](unsigned long index) const;
};

template <class T>
class PrimitiveSequence {
 public:
  void add(const T& value);
};

}  // namespace kd::zero
