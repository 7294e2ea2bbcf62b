#pragma once

#include "cppmicroservices/ServiceInterface.h"
#include "document/kdzero/Node.hpp"
#include "kd/zero/Model.hpp"
#include "quenlith/build/markup/code/CodeElement.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::code {

/// Service interface: turns one segment of a line into one inline node.
///
/// The service with the property "priority" = "default" parses plain text. The others are asked in
/// service order whether they accept a marker; the first one that does parses the segments that the
/// marker owns.
class CodeElementParser {
 public:
  virtual ~CodeElementParser() = default;

  /// Returns whether this parser accepts segments that `marker` owns.
  virtual bool canParse(const quenlith::syntax::Marker& marker) = 0;

  /// Returns a new, detached node for `element` that belongs to `model`.
  virtual document::kdzero::Node parse(const kd::zero::Model& model,
                                       const CodeElement& element) = 0;
};

}  // namespace quenlith::build::markup::code

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(quenlith::build::markup::code::CodeElementParser,
                                           "quenlith::build::markup::code::CodeElementParser")
