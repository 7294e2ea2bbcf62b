#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "exhaustive/Run.hpp"
#include "oracle/line/LineTwin.hpp"
#include "oracle/support/LogRecorder.hpp"
#include "oracle/support/services.hpp"
#include "quenlith/build/markup/code/LineNodeParserService.hpp"

namespace quenlith::exhaustive {

/// Compares the line node parser service with its twin: documents, results, and in order the calls
/// of the services and, if the plan has logging, the records of the log.
class LineComparison {
 public:
  using Units = std::vector<std::u16string_view>;

  /// Compares the line of two units of `alphabet`, and shorter lines that begin it in one of the
  /// comparisons each.
  LineComparison(const oracle::WorldPlan& plan, const Units& alphabet, std::size_t first,
                 std::size_t second);

  /// Compares all lines that extend the line by up to `more` units. The lines that differ in their
  /// last unit are in one document.
  void extend(std::size_t more);

  const Outcome& getOutcome() const { return outcome; }

 private:
  struct Documents;

  void compareLine(Documents& documents);

  const Units& alphabet;
  oracle::World twinWorld;
  oracle::World realWorld;
  std::optional<oracle::LogRecorder> recorder;
  std::shared_ptr<oracle::WorldProvider> provider;
  build::markup::code::LineNodeParserService service;
  oracle::LineTwin twin;
  build::markup::Snippet snippet;
  Outcome outcome;
};

}  // namespace quenlith::exhaustive
