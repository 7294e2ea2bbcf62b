#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "harness/Corpus.hpp"
#include "harness/Measurement.hpp"
#include "harness/Rounds.hpp"
#include "harness/Subject.hpp"

namespace bench {

/// Compares subjects: their times in rounds, their memory, or their instructions.
class Contest {
 public:
  using Make = std::function<std::unique_ptr<Subject>(const Corpus&)>;

  /// A contest of all subjects, or of the one named `onlySubject`.
  explicit Contest(std::string onlySubject = "") : only(std::move(onlySubject)) {}

  /// Borrows `corpus`. `name` is unique.
  void add(const std::string& name, const Corpus& corpus, const Make& make);

  /// Measures all subjects and checks their results in every round. Throws std::runtime_error if
  /// one is wrong, or if memory is leaked after what was built is destroyed.
  void run(int roundCount);
  /// Makes callgrind count the instructions of all subjects, see `countInstructions`.
  void count();

  /// Returns whether a subject with that name takes part if it is added.
  bool takes(const std::string& name) const noexcept { return only.empty() || name == only; }
  /// Throws std::out_of_range if no subject has that name.
  const Measurement& of(const std::string& name) const;
  /// Calls `take` with the measurement of each subject, in the order in which they were added.
  void forEach(const std::function<void(const Measurement&)>& take) const;
  bool has(const std::string& name) const noexcept;

 private:
  struct Entry {
    std::unique_ptr<Subject> subject;
    Measurement measurement;
  };

  static void measureMemory(Entry& entry);
  static void buildCounted(Entry& entry);

  std::string only;
  // A deque: the rounds borrow the entries.
  std::deque<Entry> entries;
  Rounds rounds;
};

}  // namespace bench
