#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "quenlith/build/markup/ParseResult.hpp"

namespace tessera::session {

/// The outcome of one line's calls, without the nodes themselves.
struct LineOutcome {
  /// The index of the parser that took the line.
  std::size_t parser = 0;
  quenlith::build::markup::ParseResult result;
  /// The top-level nodes that the line added: index of the first, and count.
  std::uint64_t firstNode = 0;
  std::uint64_t nodeCount = 0;
  /// The records that the calls emitted; empty when records are not collected.
  std::vector<std::string> log;
};

/// Returns whether two outcomes differ in nothing but the index of their first node.
bool areAlike(const LineOutcome& a, const LineOutcome& b) noexcept;

/// The outcomes of a file's lines, in order. Consecutive similar lines take the space of one, so
/// that plain code takes almost none.
class LineTable {
 public:
  /// Moves from `outcome` if it is stored; a line like the one before it is only counted.
  void add(LineOutcome&& outcome);

  std::uint64_t lineCount() const noexcept { return count; }

  /// A line of the table, borrowed from it.
  struct Line {
    /// 1-based.
    std::uint64_t number;
    std::uint64_t firstNode;
    const LineOutcome& outcome;
  };

  /// Walks the lines from the first to the last.
  class Cursor {
   public:
    explicit Cursor(const LineTable& table) noexcept : table(table) {}

    /// Moves to the next line. Returns whether there is one.
    bool advance() noexcept;
    Line line() const noexcept;

   private:
    const LineTable& table;
    std::size_t run = 0;
    std::uint64_t inRun = 0;
    std::uint64_t number = 0;
  };

 private:
  /// Consecutive similar lines; each has the nodes after those of the previous line.
  struct Run {
    LineOutcome first;
    std::uint64_t lines = 1;
  };

  std::vector<Run> runs;
  std::uint64_t count = 0;
};

}  // namespace tessera::session
