#pragma once

#include <string>
#include <string_view>

namespace tessera::newbundle {

/// Returns why a bundle cannot have the name, as the end of a sentence; empty if it can. A name is
/// a symbolic name, a CMake target and part of file and class names: lower-case words of letters
/// and digits with "_" between them, at most 64 characters, none that is taken.
std::string faultOf(std::string_view name);

/// Returns `name`, which has no fault, as the start of a class name: "word_count" is "WordCount".
std::string classNameOf(std::string_view name);

}  // namespace tessera::newbundle
