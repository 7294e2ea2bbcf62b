#pragma once

#include <memory>
#include <string>

#include "quenlith/build/markup/SnippetParser.hpp"

namespace tessera::session {

/// A snippet parser service and its name.
struct NamedParser {
  /// The service's test_id, "" without one. UTF-8.
  std::string name;
  std::shared_ptr<quenlith::build::markup::SnippetParser> parser;
  /// The symbolic name of its bundle. UTF-8.
  std::string bundle = {};
};

}  // namespace tessera::session
