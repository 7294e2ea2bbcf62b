#pragma once

#include <memory>

#include "cppmicroservices/ServiceInterface.h"
#include "document/kdzero/TesseraDocument.hpp"
#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/build/markup/Snippet.hpp"

namespace quenlith::build::markup {

/// Service interface: turns lines of source, one per call, into nodes of a document.
///
/// The host calls `canParse` before `parse` for the same snippet. A parser may keep state between
/// lines, so the lines of two snippets must not be interleaved on one instance, and two threads
/// must not use one instance at once.
class SnippetParser {
 public:
  virtual ~SnippetParser() = default;

  /// Returns whether this parser accepts `snippet`.
  virtual bool canParse(const Snippet& snippet) = 0;

  /// Adds the nodes of `snippet` to `document` and returns the summary of the line.
  ///
  /// `document` must not be null. The reference is released on return. An author's text never makes
  /// this throw. Exceptions of services and of the model are propagated, and nodes that were added
  /// to `document` before the exception stay in it.
  virtual ParseResult parse(std::shared_ptr<document::kdzero::TesseraDocument> document,
                            const Snippet& snippet) = 0;

  /// Ends a run of lines: discards the state kept between lines. Does nothing here.
  virtual void reset() {}
};

}  // namespace quenlith::build::markup

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(quenlith::build::markup::SnippetParser,
                                           "quenlith::build::markup::SnippetParser")
