#pragma once

#include <span>
#include <string_view>

namespace tessera::newbundle {

/// A file of the template. In path and text, @NAME@ is the name of the bundle, @CLASS@ the start
/// of the name of its class, and @VERSION@ the version of the host libraries.
struct TemplateFile {
  std::string_view path;
  std::string_view text;
};

/// Returns the files. They are compiled into the program, which so needs no folder of data.
std::span<const TemplateFile> templateFiles();

}  // namespace tessera::newbundle
