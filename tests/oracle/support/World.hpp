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

/// How a parser service answers when it is asked whether it accepts a marker.
struct AnswerRule {
  enum class Kind { kNever, kAlways, kElement, kByMarker, kByCall };
  Kind kind = Kind::kNever;
  /// For kElement: the element that is accepted.
  ustring element;
  /// For kByMarker and kByCall: varies the answers.
  std::uint64_t salt = 0;
};

/// The configuration of the services that the twin and the real parsers use.
struct WorldPlan {
  std::vector<AnswerRule> codeElementParsers;
  bool hasDefaultParser = true;
  /// The default parser is that of the bundle, which is not traced and never fails.
  bool builtInDefaultParser = false;
  std::vector<AnswerRule> contributorParsers;
  /// One in this many results of a parser service is not a new node; 0 for none.
  std::uint64_t oddResultOneIn = 0;
  /// One in this many parser calls throws; 0 for none.
  std::uint64_t throwOneIn = 0;
  std::uint64_t salt = 0;
  bool logging = true;
};

/// The exception that a service of the plan throws.
struct ServiceFailure : std::runtime_error {
  ServiceFailure() : std::runtime_error("a service of the plan failed") {}
};

/// The result of a code element parser.
struct PieceResult {
  enum class Kind { kFresh, kEmptyHandle, kLastOneAgain };
  Kind kind = Kind::kFresh;
  /// The text of a new node, which identifies the call that created it.
  ustring text;
};

/// The result of a line contributor data parser.
struct Contribution {
  ustring feature;
  /// Absent for the empty handle.
  std::optional<JsonMap> data;
};

/// The services of a parser as a plain object: answers by the plan, and records every call and log
/// record in order. The twin calls one directly, the real parser another one through services that
/// only forward the calls.
class World {
 public:
  explicit World(const WorldPlan& worldPlan);

  const WorldPlan& getPlan() const { return plan; }
  /// The number of the default code element parser, which is the last one.
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
