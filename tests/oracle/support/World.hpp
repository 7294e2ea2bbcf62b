#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "oracle/markers/PlainMarker.hpp"
#include "oracle/support/NodeRecord.hpp"

namespace quenlith::oracle {

using Range = std::pair<std::uint64_t, std::uint64_t>;

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
  /// Called in `faultCount` calls from number `faultyCall` on, counted from 0. The calls are those
  /// of all services and, with logging, of the receiver of the records.
  std::function<void()> fault;
  std::size_t faultyCall = std::numeric_limits<std::size_t>::max();
  std::size_t faultCount = 1;
};

/// The exception that a service of the plan throws.
struct ServiceFailure : std::runtime_error {
  ServiceFailure() : std::runtime_error("a service of the plan failed") {}
};

/// What services and receivers of records can throw: the exception of the plan, an exception that
/// is not derived from std::exception, and the lack of memory.
inline constexpr std::array<void (*)(), 3> kThrowing = {
    [] { throw ServiceFailure(); }, [] { throw 7; }, [] { throw std::bad_alloc(); }};

/// The ways in which services can fail from one call on: each exception of `kThrowing`, once or in
/// every call.
inline constexpr std::size_t kWaysToFail = 2 * kThrowing.size();

/// Plans that services fail in one of the ways from call number `faultyCall` on.
void planFailure(WorldPlan& plan, std::size_t faultyCall, std::size_t way);

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

/// An entry of the host's appendix: a marker and its text.
struct AppendixEntry {
  ustring text;
  PlainMarker marker;
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
  /// Records `event`.
  void note(std::string event) { trace.push_back(std::move(event)); }
  /// Records a call of a service. Throws if that is planned.
  void noteCall(std::string event);
  /// Returns the number of calls so far.
  std::size_t callCount() const { return calls; }
  /// Calls `fault` in the call that follows after `skipped` others, and in no other one.
  void planFault(std::size_t skipped, std::function<void()> fault);
  bool canParse(std::size_t parser, const PlainMarker& marker);
  PieceResult parsePiece(std::size_t parser, const ustring& text,
                         const std::optional<PlainMarker>& marker,
                         const std::optional<Range>& range);
  bool isApplicable(std::size_t parser, const PlainMarker& marker);
  Contribution contribute(std::size_t parser, const PlainMarker& marker);

  /// Replaces the appendix of the host. Each entry is the text of one marker.
  void setAppendix(const std::vector<ustring>& entries);
  /// Returns the first entry with the element and the id of `marker`.
  std::optional<AppendixEntry> findEntry(const PlainMarker& marker);

  const std::vector<std::string>& getTrace() const { return trace; }
  void clearTrace() { trace.clear(); }

 private:
  bool answer(const AnswerRule& rule, const PlainMarker& marker);
  bool falls(std::uint64_t oneIn, std::uint64_t purpose) const;
  void throwIfPlanned();

  WorldPlan plan;
  std::vector<AppendixEntry> appendix;
  std::vector<std::string> trace;
  std::size_t calls = 0;
  std::uint64_t questions = 0;
  std::uint64_t results = 0;
};

}  // namespace quenlith::oracle
