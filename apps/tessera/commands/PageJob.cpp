#include "tessera/commands/PageJob.hpp"

#include <cstring>
#include <utility>

#include "tessera/check/checkFile.hpp"

namespace tessera::commands {

using check::catalogue::CheckedFile;

namespace {

// Checking and writing take longer than parsing.
constexpr std::uint64_t kParsingShareOfPage = progress::InputProgress::kWhole / 4;

}  // namespace

/// The document of a file with what is wrong with it.
struct PageJob::CheckedDocument {
  session::ParsedSnippet parsed;
  CheckedFile checked;
  std::uint64_t appendixLine = 0;
};

PageJob::PageJob(const ParseOptions& options, const std::vector<inputs::Input>& inputs,
                 session::Recording* recording, const workers::JobContext& context)
    : FileJob({.bundles = options.bundles,
               .pieces = options.pieces,
               .keepsRecords = options.trace,
               .recording = recording,
               .parsingShare = kParsingShareOfPage},
              inputs, context),
      writing({&context.progress, kParsingShareOfPage}) {}

void PageJob::work(const std::string& path) {
  CheckedDocument document = loseWithoutMemory(path, [&] { return checkedDocument(path); });
  const html::PageFile file{.number = currentInput() + 1,
                            .checked = document.checked,
                            .parsed = document.parsed,
                            .appendixLine = document.appendixLine,
                            .stage = writing};
  const html::SectionCounts counts = html::countParts(file);
  SectionHead head{.counts = counts, .result = {}};
  head.result.file = std::move(document.checked);
  output().text() += encodeHead(head);
  document.checked = std::move(*head.result.file);
  html::writeSection(output(), file, counts, html::Unpaired::kDeferred);
}

/// The check takes the text of the file; the document does not need it.
PageJob::CheckedDocument PageJob::checkedDocument(const std::string& path) {
  session::ParsedFile file = parse(path);
  CheckedDocument document{.parsed = {.code = {},
                                      .parts = {},
                                      .document = file.snippet.document,
                                      .lines = file.snippet.lines},
                           .checked = {},
                           .appendixLine = file.source.appendixLine};
  document.checked = check::checkFile(
      path, std::move(file),
      [this](const quenlith::syntax::Marker& marker) { return isAccepted(marker); });
  return document;
}

void PageJob::addProblem(const diagnostics::Problem& problem) {
  output().text() += encodeHead(
      {.counts = {}, .result = {.problems = {problem}, .file = std::nullopt, .difference = {}}});
}

std::string encodeHead(const SectionHead& head) {
  const std::string result = check::transfer::encode(head.result);
  const SectionHeadSizes sizes{.counts = head.counts, .resultBytes = result.size()};
  // Both ends are the same program: the layout is the same.
  std::string bytes(reinterpret_cast<const char*>(&sizes), sizeof sizes);
  return bytes + result;
}

std::uint64_t headBytes(std::string_view bytes) noexcept {
  SectionHeadSizes sizes;
  if (bytes.size() < sizeof sizes) return 0;
  std::memcpy(&sizes, bytes.data(), sizeof sizes);
  return sizeof sizes + sizes.resultBytes;
}

SectionHead decodeHead(std::string_view bytes) {
  SectionHeadSizes sizes;
  std::memcpy(&sizes, bytes.data(), sizeof sizes);
  return {.counts = sizes.counts,
          .result = check::transfer::decode(bytes.substr(sizeof sizes, sizes.resultBytes))};
}

}  // namespace tessera::commands
