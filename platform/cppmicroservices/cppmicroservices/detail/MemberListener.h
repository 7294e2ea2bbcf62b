#pragma once

#include <functional>

namespace cppmicroservices::detail {

/// A listener that calls the member function `callback` of `receiver`, which is borrowed.
template <class Receiver, class Event>
struct MemberListener {
  using Function = std::function<void(const Event&)>;

  void operator()(const Event& event) const { (receiver->*callback)(event); }

  /// Says whether both are listeners of this type with the same receiver and callback.
  static bool equal(const Function& left, const Function& right) {
    const auto* const mine = left.template target<MemberListener>();
    const auto* const other = right.template target<MemberListener>();
    return mine != nullptr && other != nullptr && mine->receiver == other->receiver &&
           mine->callback == other->callback;
  }

  Receiver* receiver;
  void (Receiver::*callback)(const Event&);
};

}  // namespace cppmicroservices::detail
