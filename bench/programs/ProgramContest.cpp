#include "programs/ProgramContest.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <stdexcept>
#include <utility>

#include "harness/MarkdownTable.hpp"
#include "harness/Subject.hpp"
#include "programs/Program.hpp"
#include "programs/writeMarkedFile.hpp"

namespace bench::programs {

namespace {

const std::string kFileToFile = "tessera parse --format json, file to file";
const std::string kRead = "reading the file";
const std::string kParse = "parsing in memory";
const std::string kWrite = "writing as many bytes";
const std::string kOneLine = "a C++ program that prints one line";
const std::string kTenLines = "tessera parse, ten lines";
const std::string kParseMarked = "tessera parse --format ndjson, marked lines, to a file";
const std::string kCheckMarked = "tessera check, marked lines";
constexpr std::size_t kMarkedLines = 100'000;

/// The time that a program measured itself.
RunTimes ownTime(const std::vector<std::string>& arguments) {
  return {std::stod(run(arguments).output), 0};
}

/// The best time of several runs, because a start is short and easily disturbed.
RunTimes startTime(const std::vector<std::string>& arguments) {
  constexpr int kStarts = 20;
  RunTimes best{};
  for (int start = 0; start < kStarts; ++start) {
    best.seconds = std::min(best.seconds, run(arguments).processorSeconds);
  }
  best.endSeconds = 0;
  return best;
}

std::size_t linesOf(const std::string& file) {
  std::ifstream text(file);
  return static_cast<std::size_t>(std::count(std::istreambuf_iterator<char>(text), {}, '\n'));
}

/// Number of text nodes in a document written as JSON.
std::size_t textNodesOf(const std::string& file) {
  std::ifstream text(file);
  std::size_t count = 0;
  for (std::string line; std::getline(text, line);) {
    count += line.find(R"("kind": "PlainTextNode")") != std::string::npos ? 1 : 0;
  }
  return count;
}

void copyLines(const std::string& from, const std::string& to, int lineCount) {
  std::ifstream source(from);
  std::ofstream target(to);
  std::string line;
  for (int copied = 0; copied < lineCount && std::getline(source, line); ++copied) {
    target << line << '\n';
  }
}

}  // namespace

ProgramContest::ProgramContest(std::string programFolder, std::string source)
    : folder(std::move(programFolder)),
      sourceFile(std::move(source)),
      tenLinesFile(sourceFile + ".10"),
      markedFile(sourceFile + ".marked"),
      outputFile(sourceFile + ".json") {
  copyLines(sourceFile, tenLinesFile, 10);
  runToFile({program("tessera"), "parse", "--format", "json", sourceFile}, outputFile);
  expectCount("tessera, text nodes", textNodesOf(outputFile), linesOf(sourceFile));
  outputBytes = std::filesystem::file_size(outputFile);
  writeMarkedFile(sourceFile, markedFile, kMarkedLines);
  addFileToFile();
  addStarts();
  addCheck();
}

void ProgramContest::addFileToFile() {
  rounds.add(kFileToFile, [this] {
    const Finished finished =
        runToFile({program("tessera"), "parse", "--format", "json", sourceFile}, outputFile);
    expectCount("tessera, bytes", std::filesystem::file_size(outputFile), outputBytes);
    return RunTimes{finished.processorSeconds, 0};
  });
  rounds.add(kRead, [this] { return ownTime({program("bench_read_file"), sourceFile}); });
  rounds.add(kParse, [this] { return ownTime({program("bench_parse_in_memory"), sourceFile}); });
  rounds.add(kWrite, [this] {
    return ownTime({program("bench_write_file"), outputFile, std::to_string(outputBytes)});
  });
}

void ProgramContest::addStarts() {
  rounds.add(kOneLine, [this] { return startTime({program("bench_print_line")}); });
  rounds.add(kTenLines, [this] { return startTime({program("tessera"), "parse", tenLinesFile}); });
}

void ProgramContest::addCheck() {
  rounds.add(kParseMarked, [this] {
    const std::vector<std::string> parse{program("tessera"), "parse", "--format", "ndjson",
                                         markedFile};
    return RunTimes{runToFile(parse, outputFile).processorSeconds, 0};
  });
  rounds.add(kCheckMarked, [this] {
    // With this option, the run fails if there is anything to say.
    const std::vector<std::string> check{program("tessera"), "check", "--fail-on", "warning",
                                         markedFile};
    return RunTimes{bench::programs::run(check).processorSeconds, 0};
  });
}

void ProgramContest::run(int roundCount) {
  rounds.run(roundCount);
  std::filesystem::remove(markedFile);
  std::filesystem::remove(outputFile);
  std::filesystem::remove(tenLinesFile);
}

void ProgramContest::write(std::ostream& out) const {
  out << "Source of " << linesOf(sourceFile) << " lines, "
      << decimal(static_cast<double>(std::filesystem::file_size(sourceFile)) / 1e6, 1)
      << " MB; its document as JSON, " << decimal(static_cast<double>(outputBytes) / 1e6, 1)
      << " MB.\n\n";
  writeTimes(out);
  out << '\n';
  writeAims(out);
}

void ProgramContest::writeTimes(std::ostream& out) const {
  MarkdownTable table({"what", "ms"});
  for (const auto* name : {&kFileToFile, &kRead, &kParse, &kWrite, &kOneLine, &kTenLines,
                           &kParseMarked, &kCheckMarked}) {
    table.add({*name, decimal(seconds(*name) * 1e3, 2)});
  }
  table.write(out);
}

void ProgramContest::writeAims(std::ostream& out) const {
  const double parts = seconds(kRead) + seconds(kParse) + seconds(kWrite);
  AimTable table;
  table.atLeast("speed of tessera parse --format json, in times of reading, parsing and writing",
                parts / seconds(kFileToFile), 0.5);
  table.atMost("tessera parse of ten lines, ms more than a program that prints one line",
               (seconds(kTenLines) - seconds(kOneLine)) * 1e3, 8);
  table.atMost("tessera check, in times of tessera parse --format ndjson",
               seconds(kCheckMarked) / seconds(kParseMarked), 1.5);
  table.write(out);
}

}  // namespace bench::programs
