#pragma once

#include <iosfwd>
#include <memory>

namespace foundation::log {

/// A reference to a callable that writes one message to a stream: no copy, no allocation.
class MessageWriter {
 public:
  /// Borrows `callable`, which must outlive this object.
  template <typename Callable>
  explicit MessageWriter(const Callable& callable) noexcept
      : object(std::addressof(callable)), call([](const void* target, std::ostream& out) {
          (*static_cast<const Callable*>(target))(out);
        }) {}

  /// Writes the message to `out`. Throws what the callable throws.
  void operator()(std::ostream& out) const { call(object, out); }

 private:
  const void* object;
  void (*call)(const void* target, std::ostream& out);
};

}  // namespace foundation::log
