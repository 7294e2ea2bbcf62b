#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "harness/AimTable.hpp"
#include "harness/Rounds.hpp"

namespace bench::programs {

/// Compares the program `tessera` with lower bounds for its work.
class ProgramContest {
 public:
  /// Finds the programs in `programFolder`, and parses the file `source` into files next to it.
  ProgramContest(std::string programFolder, std::string source);

  /// Throws std::runtime_error when a program fails or `tessera` does not write all lines.
  void run(int roundCount);
  void write(std::ostream& out) const;

 private:
  std::string program(const std::string& name) const { return folder + '/' + name; }
  void addFileToFile();
  void addStarts();
  void addCheck();
  void writeTimes(std::ostream& out) const;
  void writeAims(std::ostream& out) const;
  double seconds(const std::string& name) const { return rounds.best(name).seconds; }

  std::string folder;
  std::string sourceFile;
  std::string tenLinesFile;
  std::string markedFile;
  std::string outputFile;
  std::uintmax_t outputBytes = 0;
  Rounds rounds;
};

}  // namespace bench::programs
