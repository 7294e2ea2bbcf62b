#pragma once

#include <string>

#include "quenlith/build/markup/ParseResult.hpp"

namespace quenlith::oracle {

/// Returns all fields of `result` on one line.
std::string showResult(const build::markup::ParseResult& result);

/// Returns the result of `call`, or `meaningOfException()` if it throws: the twin and the real
/// parser throw different types with the same meaning.
template <class Call>
std::string outcomeOf(const Call& call);

/// Returns the meaning of the exception that is being handled.
std::string meaningOfException();

template <class Call>
std::string outcomeOf(const Call& call) {
  try {
    return call();
  } catch (...) {
    return meaningOfException();
  }
}

}  // namespace quenlith::oracle
