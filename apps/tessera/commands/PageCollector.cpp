#include "tessera/commands/PageCollector.hpp"

#include <algorithm>
#include <utility>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/commands/PageJob.hpp"
#include "tessera/diagnostics/report.hpp"
#include "tessera/html/DiagnosticHtml.hpp"
#include "tessera/run/TextCollector.hpp"

namespace tessera::commands {

using check::catalogue::CheckedFile;
using check::catalogue::Severity;

PageCollector::PageCollector(const std::vector<inputs::Input>& inputs, files::OutputFile& output,
                             html::PageUse use)
    : inputs(inputs),
      output(output),
      use(use),
      heldFiles([this](const CheckedFile& file) { take(file); }) {}

void PageCollector::addText(std::string_view piece) {
  while (!piece.empty()) {
    // First the numbers that say how long the head is, then the rest of it.
    const std::uint64_t known = headBytes(head);
    const std::uint64_t wanted = known == 0 ? sizeof(SectionHeadSizes) : known;
    if (head.size() >= wanted) return addSectionText(piece);
    const std::size_t length = std::min<std::size_t>(wanted - head.size(), piece.size());
    head += piece.substr(0, length);
    piece.remove_prefix(length);
  }
}

void PageCollector::addSectionText(std::string_view piece) {
  sectionBytes += piece.size();
  sections.output().text() += piece;
  sections.output().flushIfLarge();
}

void PageCollector::addMessage(std::string_view message) {
  diagnostics::report(message);
}

void PageCollector::endInput(std::size_t index, workers::Outcome outcome) {
  const std::string bytes = std::exchange(head, {});
  sectionBytes = 0;
  if (outcome == workers::Outcome::kSkipped) return;
  SectionHead received = decodeHead(bytes);
  for (const diagnostics::Problem& problem : received.result.problems) addProblem(index, problem);
  if (!received.result.file) return;
  summary.add(received.counts);
  heldEntries.push_back(summary.entries.size());
  summary.entries.push_back({.path = inputs[index].path, .number = index + 1});
  heldFiles.add(std::move(*received.result.file));
}

void PageCollector::loseInput(std::size_t index, const workers::Loss& loss) {
  head.clear();
  const diagnostics::ProblemError error(
      run::problemOf(inputs[index].path, "no section could be made", loss));
  addMessage(error.what());
  sections.output().flush();
  sections.output().takeBack(std::exchange(sectionBytes, 0));
  addProblem(index, error.problem());
}

void PageCollector::addProblem(std::size_t index, const diagnostics::Problem& problem) {
  summary.entries.push_back({.path = inputs[index].path, .number = index + 1, .problem = problem});
  exitStatus = kInputsFailed;
}

/// Takes a file whose diagnostics are final.
void PageCollector::take(const CheckedFile& file) {
  html::PageEntry& entry = summary.entries[heldEntries.front()];
  heldEntries.pop_front();
  summary.add(file);
  html::HtmlText items(list.output().text());
  for (std::size_t i = 0; i < file.diagnostics.size(); ++i) {
    const html::FoundDiagnostic found{entry.number, file, i};
    const bool isFailure = severityOf(found.diagnostic()) == Severity::kFailure;
    ++(isFailure ? entry.failures : entry.warnings);
    html::addListItem(items, found);
    if (!found.diagnostic().unpairedTask) continue;
    html::HtmlText text(deferred.emplace_back());
    html::addDiagnostic(text, found);
  }
  list.output().flushIfLarge();
}

void PageCollector::finish() {
  heldFiles.finish();
  html::beginPage(output, summary, use);
  html::beginDiagnosticList(output, summary);
  copyList();
  html::endDiagnosticList(output, summary);
  copySections();
  html::endPage(output, summary);
  output.flush();
}

void PageCollector::copyList() {
  list.rewind();
  std::string piece;
  for (list.read(piece); !piece.empty(); list.read(piece)) output.writeThrough(piece);
}

/// Copies the sections, and puts the deferred diagnostics in their places.
void PageCollector::copySections() {
  sections.rewind();
  auto next = deferred.begin();
  std::string piece;
  for (sections.read(piece); !piece.empty(); sections.read(piece)) {
    std::string_view rest = piece;
    for (std::size_t mark = rest.find(html::kDeferredMark); mark != rest.npos;
         mark = rest.find(html::kDeferredMark)) {
      output.text() += rest.substr(0, mark);
      output.text() += *next++;
      rest.remove_prefix(mark + 1);
    }
    output.text() += rest;
    output.flushIfLarge();
  }
}

}  // namespace tessera::commands
