#pragma once

#include "cppmicroservices/ServiceInterface.h"
#include "document/kdzero/Node.hpp"
#include "kd/zero/Model.hpp"
#include "quenlith/build/markup/code/CodeElement.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::code {

/// Service interface: turns one piece of a line into one inline node.
///
/// A service with the property "priority" = "default" makes the nodes of plain text; every
/// other one is asked in service order whether it takes the pieces of a marker, and the
/// first that does is used.
class CodeElementParser {
 public:
  virtual ~CodeElementParser() = default;

  /// Tells whether this parser takes pieces that `marker` owns.
  virtual bool canParse(const quenlith::syntax::Marker& marker) = 0;

  /// Returns a new, detached node for `element` that belongs to `model`.
  virtual document::kdzero::Node parse(const kd::zero::Model& model,
                                       const CodeElement& element) = 0;
};

}  // namespace quenlith::build::markup::code

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(quenlith::build::markup::code::CodeElementParser,
                                           "quenlith::build::markup::code::CodeElementParser")
