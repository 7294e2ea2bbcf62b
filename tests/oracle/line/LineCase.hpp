#pragma once

#include <string>
#include <vector>

#include "oracle/line/LineTwin.hpp"
#include "oracle/support/Random.hpp"
#include "quenlith/build/markup/ParseResult.hpp"

namespace quenlith::oracle {

/// A few lines that one line node parser service parses into one document.
struct LineCase {
  WorldPlan plan;
  build::markup::ParseResult given;
  std::vector<ustring> lines;
};

/// The outcome of a case: the document, and in order every call of a service, every log record and
/// every result or exception of a line.
struct Outcome {
  DocumentRecord document;
  std::vector<std::string> trace;

  friend bool operator==(const Outcome&, const Outcome&) = default;
};

LineCase randomLineCase(Random& random);

/// Runs the twin. The facts of every line are appended to `facts`.
Outcome runTwin(const LineCase& lineCase, std::vector<LineFacts>& facts);
Outcome runReal(const LineCase& lineCase);

/// Returns how often the twin calls services and logs.
std::size_t countCalls(const LineCase& lineCase);

/// Returns whether the twin and the real parser have the same outcome.
bool agree(const LineCase& lineCase);

/// Returns a smaller case on which the two still differ: fewer lines, shorter lines, fewer
/// services.
LineCase shrink(LineCase lineCase);

/// Returns the case, and where the two outcomes differ, as text for a person.
std::string report(const LineCase& lineCase);

}  // namespace quenlith::oracle
