#include "tessera/doctor/DiagnosisText.hpp"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string_view>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/terminalText.hpp"

namespace tessera::doctor {
namespace {

using diagnostics::terminalText;

constexpr std::string_view kBold = "\x1b[1m";
constexpr std::string_view kGreen = "\x1b[32m";
constexpr std::string_view kRed = "\x1b[1;31m";
constexpr std::string_view kPlain = "\x1b[0m";

/// Builds the text row by row.
class TextReport {
 public:
  TextReport(std::string& text, bool isColored) : text(text), isColored(isColored) {}

  void program(const Diagnosis& diagnosis) {
    heading("Program");
    row(diagnosis.program.name + " " + diagnosis.program.version, diagnosis.program.file);
    const std::string version = diagnosis.framework.version;
    row(diagnosis.frameworkKind + " framework" + (version.empty() ? "" : " " + version),
        diagnosis.framework.file);
    for (const Library& library : diagnosis.libraries) {
      if (library.file == diagnosis.framework.file) continue;
      row(library.name + " " + library.version, library.file);
    }
  }

  void bundles(const std::vector<Bundle>& list) {
    heading("Bundles, in the order in which they are started");
    for (const Bundle& bundle : list) {
      const std::string version = bundle.version.empty() ? "" : " " + terminalText(bundle.version);
      const std::string name = bundle.name.empty() ? "(unknown)" : terminalText(bundle.name);
      text += "  ";
      state(bundle.state, bundle.state == "active");
      text.append(" ").append(name).append(version).append("\n");
      text += "            " + bundle.role + ", " + terminalText(bundle.file) + "\n";
      for (const Component& entry : bundle.components) component(entry);
    }
  }

  void services(const std::vector<Service>& list) {
    heading("Services, by interface, in the order in which they are asked");
    std::set<std::string> interfaceIds;
    for (const Service& service : list) {
      interfaceIds.insert(service.interfaceIds.begin(), service.interfaceIds.end());
    }
    for (const std::string& interfaceId : interfaceIds) {
      text += "  " + terminalText(interfaceId) + "\n";
      for (const bool isDefault : {false, true}) serviceRows(list, interfaceId, isDefault);
    }
  }

  void problems(const std::vector<diagnostics::Problem>& list) {
    if (list.empty()) {
      text += '\n';
      style(kGreen, "Everything is in order.");
      text += '\n';
      return;
    }
    heading("Problems");
    for (const diagnostics::Problem& problem : list) text += "  " + describe(problem) + "\n";
    text += '\n';
    style(kRed, std::to_string(list.size()) + (list.size() == 1 ? " problem" : " problems") +
                    ": tessera parse would not run.");
    text += '\n';
  }

 private:
  static constexpr std::size_t kNameColumns = 32;
  static constexpr std::size_t kRankingColumns = 3;

  void style(std::string_view sequence, std::string_view styled) {
    if (isColored) text += sequence;
    text += styled;
    if (isColored) text += kPlain;
  }

  void heading(std::string_view title) {
    if (!text.empty()) text += '\n';
    style(kBold, title);
    text += '\n';
  }

  void row(const std::string& title, const std::string& file) {
    const std::string name = terminalText(title);
    text += "  " + name;
    text.append(name.size() < kNameColumns ? kNameColumns - name.size() : 1, ' ');
    text += terminalText(file) + "\n";
  }

  void state(const std::string& word, bool isGood) {
    constexpr std::size_t kColumns = 9;
    style(isGood ? kGreen : kRed, word);
    text.append(kColumns - std::min(word.size(), kColumns), ' ');
  }

  void component(const Component& entry) {
    text += "            ";
    state(entry.state, entry.state == "ready");
    text += " " + terminalText(entry.name) + "\n";
    for (const Wait& wait : entry.waits) {
      text += "                      waits for " + terminalText(wait.interfaceId) + " (\"" +
              terminalText(wait.reference) + "\")\n";
    }
  }

  // The default parser is asked when no other one accepts.
  void serviceRows(const std::vector<Service>& list, const std::string& interfaceId,
                   bool isDefault) {
    for (const Service& service : list) {
      const auto& provided = service.interfaceIds;
      if (service.isDefault != isDefault ||
          std::ranges::find(provided, interfaceId) == provided.end()) {
        continue;
      }
      const std::string ranking = std::to_string(service.ranking);
      text += "    ranking ";
      text.append(ranking.size() < kRankingColumns ? kRankingColumns - ranking.size() : 0, ' ');
      text += ranking + "  " +
              (service.component.empty() ? "the program" : terminalText(service.component));
      if (!service.component.empty()) text += " of " + terminalText(service.bundle);
      text += isDefault ? ", the default\n" : "\n";
    }
  }

  std::string& text;
  const bool isColored;
};

}  // namespace

void appendText(std::string& text, const Diagnosis& diagnosis, bool isColored) {
  std::string rows;
  TextReport report(rows, isColored);
  report.program(diagnosis);
  report.bundles(diagnosis.bundles);
  report.services(diagnosis.services);
  report.problems(diagnosis.problems);
  text += rows;
}

}  // namespace tessera::doctor
