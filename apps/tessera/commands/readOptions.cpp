#include "tessera/commands/readOptions.hpp"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "tessera/commandline/failUsage.hpp"
#include "tessera/tree/TreeStyle.hpp"
#include "tessera/workers/WorkerPool.hpp"

namespace tessera::commands {
namespace {

using commandline::Arguments;

[[noreturn]] void failValue(const Arguments& arguments, const std::string& value,
                            const std::string& fault) {
  commandline::failUsage(&arguments.of(), "\"" + value + "\" is not " + fault, {});
}

/// Returns what the value of the option `name` means, the first meaning if it is not given.
template <class Meaning>
Meaning choose(const Arguments& arguments, std::string_view name,
               std::initializer_list<std::pair<std::string_view, Meaning>> meanings) {
  const std::string* const value = arguments.find(name);
  if (value == nullptr) return meanings.begin()->second;
  const auto* const found =
      std::ranges::find(meanings, *value, &std::pair<std::string_view, Meaning>::first);
  if (found == meanings.end()) throw std::logic_error("no meaning of " + *value);
  return found->second;
}

std::vector<std::string> readBundles(const Arguments& arguments) {
  const std::vector<std::string>& bundles = arguments.values("--bundle");
  if (std::ranges::find(bundles, "") != bundles.end()) {
    failValue(arguments, "", "a bundle: name its library");
  }
  return bundles;
}

host::Pieces readPieces(const Arguments& arguments) {
  return arguments.has("--bare") ? host::Pieces::kDropped : host::Pieces::kKept;
}

std::uint64_t readCount(std::string_view digits) {
  std::uint64_t count = 0;
  const auto [end, error] = std::from_chars(digits.begin(), digits.end(), count);
  return error == std::errc() && end == digits.end() ? count : 0;
}

inputs::Shard readShard(const Arguments& arguments) {
  const std::string* const text = arguments.find("--shard");
  if (text == nullptr) return {};
  const std::size_t slash = std::min(text->find('/'), text->size());
  const std::string_view index = std::string_view(*text).substr(0, slash);
  const std::string_view count = std::string_view(*text).substr(std::min(slash + 1, text->size()));
  const inputs::Shard shard{.index = readCount(index), .count = readCount(count)};
  if (shard.index != 0 && shard.index <= shard.count) return shard;
  failValue(arguments, *text, "a shard: use I/N with 1 <= I <= N");
}

std::size_t readWorkers(const Arguments& arguments) {
  constexpr std::uint64_t kMostWorkers = 1024;
  const std::string* const text = arguments.find("--jobs");
  if (text == nullptr) return std::max(1U, std::thread::hardware_concurrency());
  const std::uint64_t count = readCount(*text);
  if (count != 0 && count <= kMostWorkers) return count;
  failValue(arguments, *text, "a number of workers: use 1 to 1024");
}

/// Returns zero if the option `name` is not given.
std::chrono::milliseconds readTime(const Arguments& arguments, std::string_view name) {
  constexpr double kMostSeconds = 1e6;
  const std::string* const text = arguments.find(name);
  if (text == nullptr) return {};
  double seconds = 0;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), seconds);
  if (error == std::errc() && end == text->data() + text->size() && seconds >= 0.001 &&
      seconds <= kMostSeconds) {
    return std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
  }
  failValue(arguments, *text, "a time: use seconds, for example 30 or 0.5");
}

progress::Mode readProgress(const Arguments& arguments) {
  if (!arguments.has("--progress")) return progress::Mode::kAuto;
  return choose<progress::Mode>(
      arguments, "--progress",
      {{"always", progress::Mode::kAlways}, {"never", progress::Mode::kNever}});
}

/// Returns "" for standard output.
std::string readOutputFile(const Arguments& arguments) {
  const std::string* const name = arguments.find("--output");
  if (name == nullptr || *name == "-") return {};
  if (name->empty()) failValue(arguments, "", "a file to write: name a file");
  return *name;
}

std::string readRecordFile(const Arguments& arguments) {
  const std::string* const name = arguments.find("--record");
  if (name == nullptr) return {};
  if (!name->empty() && *name != "-") return *name;
  failValue(arguments, *name, "a file to record to: name a file");
}

/// Returns "" if there is none.
std::string readListFile(const Arguments& arguments) {
  const std::string* const name = arguments.find("--files-from");
  if (name == nullptr) return {};
  if (name->empty()) failValue(arguments, "", "a list of paths: name a file");
  return *name;
}

inputs::InputOptions readInputs(const Arguments& arguments) {
  inputs::InputOptions options;
  options.paths = arguments.operands();
  options.listFile = readListFile(arguments);
  options.isNulSeparated = arguments.has("--null");
  options.globs = arguments.values("--glob");
  options.respectsIgnoreFiles = !arguments.has("--no-ignore");
  options.shard = readShard(arguments);
  return options;
}

run::RunOptions readRun(const Arguments& arguments) {
  run::RunOptions options;
  options.inputs = readInputs(arguments);
  options.workers = readWorkers(arguments);
  options.timeout = readTime(arguments, "--timeout");
  options.progress = readProgress(arguments);
  options.outputFile = readOutputFile(arguments);
  options.resumes = arguments.has("--resume");
  return options;
}

terminal::ColorMode readColor(const Arguments& arguments) {
  return choose<terminal::ColorMode>(arguments, "--color",
                                     {{"auto", terminal::ColorMode::kAuto},
                                      {"always", terminal::ColorMode::kAlways},
                                      {"never", terminal::ColorMode::kNever}});
}

std::optional<std::size_t> readColumns(const Arguments& arguments) {
  constexpr std::uint64_t kMostColumns = 1'000'000;
  const std::string* const text = arguments.find("--width");
  if (text == nullptr) return std::nullopt;
  const std::uint64_t count = readCount(*text);
  if (count >= tree::TreeStyle::kFewestColumns && count <= kMostColumns) return count;
  failValue(arguments, *text, "a width: use 20 to 1000000 columns");
}

std::uint16_t readPort(const Arguments& arguments) {
  const std::string* const text = arguments.find("--port");
  if (text == nullptr) return 0;
  const std::uint64_t port = readCount(*text);
  if (port != 0 && port <= std::numeric_limits<std::uint16_t>::max()) {
    return static_cast<std::uint16_t>(port);
  }
  failValue(arguments, *text, "a port: use 1 to 65535");
}

Fixes readFixes(const Arguments& arguments) {
  if (!arguments.has("--fix")) return Fixes::kNone;
  return arguments.has("--dry-run") ? Fixes::kShown : Fixes::kApplied;
}

}  // namespace

ParseOptions readParseOptions(const Arguments& arguments) {
  ParseOptions options;
  options.format = choose<ParseFormat>(arguments, "--format",
                                       {{"tree", ParseFormat::kTree},
                                        {"json", ParseFormat::kJson},
                                        {"ndjson", ParseFormat::kNdjson},
                                        {"html", ParseFormat::kHtml}});
  options.trace = arguments.has("--trace");
  options.columns = readColumns(arguments);
  options.color = readColor(arguments);
  if (arguments.has("--omit-empty")) {
    options.emptyMembers = foundation::json::EmptyMembers::kOmitted;
  }
  options.pieces = readPieces(arguments);
  options.recordFile = readRecordFile(arguments);
  options.replacesAnyFile = arguments.has("--force");
  options.bundles = readBundles(arguments);
  options.run = readRun(arguments);
  return options;
}

CheckOptions readCheckOptions(const Arguments& arguments) {
  CheckOptions options;
  options.fixes = readFixes(arguments);
  options.format = choose<CheckFormat>(
      arguments, "--format",
      {{"text", CheckFormat::kText}, {"json", CheckFormat::kJson}, {"sarif", CheckFormat::kSarif}});
  options.failOn = choose<FailOn>(
      arguments, "--fail-on",
      {{"failure", FailOn::kFailure}, {"warning", FailOn::kWarning}, {"never", FailOn::kNever}});
  options.color = readColor(arguments);
  options.bundles = readBundles(arguments);
  options.pieces = readPieces(arguments);
  options.run = readRun(arguments);
  // Its markers would have partners "in another file", and it would be fixed twice.
  options.run.inputs.dropsRepeated = true;
  return options;
}

MarkersOptions readMarkersOptions(const Arguments& arguments) {
  MarkersOptions options;
  options.format = choose<MarkersFormat>(
      arguments, "--format", {{"text", MarkersFormat::kText}, {"json", MarkersFormat::kJson}});
  options.pieces = readPieces(arguments);
  options.bundles = readBundles(arguments);
  options.run = readRun(arguments);
  return options;
}

ExplainOptions readExplainOptions(const Arguments& arguments) {
  ExplainOptions options;
  options.format = choose<ExplainFormat>(
      arguments, "--format",
      {{"text", ExplainFormat::kText}, {"markdown", ExplainFormat::kMarkdown}});
  if (!arguments.operands().empty()) options.id = arguments.operands().front();
  return options;
}

NewBundleOptions readNewBundleOptions(const Arguments& arguments) {
  return {.name = arguments.operands().front(), .directory = arguments.operands().back()};
}

ReplayOptions readReplayOptions(const Arguments& arguments) {
  return {.bundles = readBundles(arguments), .file = arguments.operands().front()};
}

ViewOptions readViewOptions(const Arguments& arguments) {
  constexpr std::chrono::seconds kCloseAfter{60};
  ViewOptions options;
  options.inputs = readInputs(arguments);
  options.bundles = readBundles(arguments);
  options.pieces = readPieces(arguments);
  options.port = readPort(arguments);
  options.opensBrowser = !arguments.has("--no-browser");
  options.closeAfter =
      arguments.has("--close-after") ? readTime(arguments, "--close-after") : kCloseAfter;
  return options;
}

DoctorOptions readDoctorOptions(const Arguments& arguments) {
  DoctorOptions options;
  options.format = choose<DoctorFormat>(
      arguments, "--format", {{"text", DoctorFormat::kText}, {"json", DoctorFormat::kJson}});
  options.bundles = readBundles(arguments);
  return options;
}

}  // namespace tessera::commands
