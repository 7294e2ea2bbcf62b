#pragma once

#include <memory>

#include "cppmicroservices/ServiceInterface.h"
#include "document/kdzero/TesseraDocument.hpp"
#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/build/markup/Snippet.hpp"

namespace quenlith::build::markup {

/// Service interface: turns lines of source, one a call, into nodes of a document.
///
/// `canParse` is asked before `parse` for the same snippet. A parser may carry state from
/// line to line, so the lines of two snippets must not be interleaved on one instance, nor
/// may two threads use one at once.
class SnippetParser {
 public:
  virtual ~SnippetParser() = default;

  /// Tells whether this parser takes `snippet`.
  virtual bool canParse(const Snippet& snippet) = 0;

  /// Adds the nodes of `snippet` to `document` and returns the summary of the line.
  ///
  /// `document` must not be null; the reference is let go of on return. An author's text
  /// never makes this throw; exceptions of the services used and of the model pass through,
  /// and what was added to `document` before one stays in it.
  virtual ParseResult parse(std::shared_ptr<document::kdzero::TesseraDocument> document,
                            const Snippet& snippet) = 0;

  /// Ends a run of lines: forgets what was carried from line to line. Does nothing here.
  virtual void reset() {}
};

}  // namespace quenlith::build::markup

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(quenlith::build::markup::SnippetParser,
                                           "quenlith::build::markup::SnippetParser")
