#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "oracle/support/NodeRecord.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::oracle {

using Range = std::pair<std::uint64_t, std::uint64_t>;
using quenlith::syntax::Marker;

/// How a parser service answers when it is asked whether it takes a marker.
struct AnswerRule {
  enum class Kind { kNever, kAlways, kElement, kByMarker, kByCall };
  Kind kind = Kind::kNever;
  /// Of kElement: the element that is taken.
  ustring element;
  /// Of kByMarker and kByCall: varies the answers.
  std::uint64_t salt = 0;
};

/// Everything that is set before a parse and that both the twin and the real parsers meet.
struct WorldPlan {
  std::vector<AnswerRule> codeElementParsers;
  bool hasDefaultParser = true;
  /// The default parser is the one of the bundle, which is in no trace and never fails.
  bool builtInDefaultParser = false;
  std::vector<AnswerRule> contributorParsers;
  /// One in so many results of a parser service is no fresh node; 0 for none.
  std::uint64_t oddResultOneIn = 0;
  /// One in so many parser calls throws; 0 for none.
  std::uint64_t throwOneIn = 0;
  std::uint64_t salt = 0;
  bool logging = true;
};

/// What a service of the plan throws.
struct ServiceFailure : std::runtime_error {
  ServiceFailure() : std::runtime_error("a service of the plan failed") {}
};

/// What a code element parser hands back.
struct PieceResult {
  enum class Kind { kFresh, kEmptyHandle, kLastOneAgain };
  Kind kind = Kind::kFresh;
  /// The text of a fresh node: it tells which call made it.
  ustring text;
};

/// What a line contributor data parser hands back.
struct Contribution {
  ustring feature;
  /// Absent for the empty handle.
  std::optional<JsonMap> data;
};

/// The services around a parser as a plain object: answers by the plan, and writes down every
/// call and log record in the order in which they come. The twin asks one directly, the real
/// parser another one through services that only pass the question on.
class World {
 public:
  explicit World(const WorldPlan& worldPlan);

  const WorldPlan& getPlan() const { return plan; }
  /// The number of the default code element parser: it stands behind all others.
  std::size_t defaultParser() const { return plan.codeElementParsers.size(); }

  void log(const std::string& message);
  void note(std::string event) { trace.push_back(std::move(event)); }
  bool canParse(std::size_t parser, const Marker& marker);
  PieceResult parsePiece(std::size_t parser, const ustring& text,
                         const std::optional<Marker>& marker, const std::optional<Range>& range);
  bool isApplicable(std::size_t parser, const Marker& marker);
  Contribution contribute(std::size_t parser, const Marker& marker);

  /// Replaces the appendix of the host.
  void setAppendix(const std::vector<Marker>& entries) { appendix = entries; }
  /// Returns the first entry with the element and the id of `marker`.
  std::optional<Marker> findEntry(const Marker& marker);

  const std::vector<std::string>& getTrace() const { return trace; }
  void clearTrace() { trace.clear(); }

 private:
  bool answer(const AnswerRule& rule, const Marker& marker);
  bool falls(std::uint64_t oneIn, std::uint64_t purpose) const;
  void throwIfPlanned();

  WorldPlan plan;
  std::vector<Marker> appendix;
  std::vector<std::string> trace;
  std::uint64_t questions = 0;
  std::uint64_t results = 0;
};

}  // namespace quenlith::oracle
