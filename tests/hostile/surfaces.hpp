#pragma once

#include <map>
#include <string>

#include "fl/i18n/ustring.hpp"
#include "hostile/Meter.hpp"

namespace hostile {

/// Passes `text` to every operation that takes text from outside, and returns what each took by its
/// name.
std::map<std::string, Cost> measureAll(const fl::i18n::ustring& text);

}  // namespace hostile
