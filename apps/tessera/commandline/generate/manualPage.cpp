#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "tessera/commandline/describe.hpp"
#include "tessera/commandline/generate/texts.hpp"

namespace tessera::commandline::generate {
namespace {

// Rows of the source of the page are at most this long, as far as words allow.
constexpr std::size_t kColumns = 80;

/// Returns `text` so that roff shows it as it is, dashes as those that are typed.
std::string roff(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else if (c == '\'') {
      escaped += "\\(aq";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

/// Returns `text` broken into rows; each sentence begins one.
std::string roffRows(std::string_view text) {
  std::string rows;
  std::size_t column = 0;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    const std::string escaped = roff(word);
    const bool isSentence = rows.ends_with('.');
    if (column > 0) rows += isSentence || column + 1 + escaped.size() > kColumns ? '\n' : ' ';
    if (rows.ends_with('\n')) column = 0;
    // A dot at the start of a row would be a request.
    if ((rows.empty() || rows.ends_with('\n')) && word.starts_with('.')) rows += "\\&";
    rows += escaped;
    column += escaped.size() + 1;
  }
  return rows;
}

std::string bold(std::string_view text) {
  return "\\fB" + roff(text) + "\\fP";
}
std::string italic(std::string_view text) {
  return "\\fI" + roff(text) + "\\fP";
}

class ManualPage {
 public:
  void addLine(const std::string& line) { text.append(line).append("\n"); }

  void addTerm(const std::string& term, const std::string& description) {
    addLine(".TP");
    addLine(term);
    addLine(roffRows(description));
  }

  void add(const Option& option) {
    std::string forms;
    if (option.letter != '\0') forms = bold(std::string("-") + option.letter) + ", ";
    forms += bold(option.name);
    if (!option.value.empty()) forms += " " + italic(option.value);
    addTerm(forms, describe(option));
    if (option.choices.empty()) return;
    addLine(".RS");
    for (const Choice& choice : option.choices)
      addTerm(bold(choice.name), std::string(choice.help));
    addLine(".RE");
  }

  void add(const Command& command) {
    addLine(".SS " + roff(usageOf(command)));
    addLine(roffRows(command.summary));
    if (!command.description.empty()) addLine(roffRows(command.description));
    for (const Operand& operand : command.operands) {
      addTerm(italic(operand.name), std::string(operand.help));
    }
    for (const Group& group : command.groups) {
      for (const Option& option : group.options) add(option);
    }
  }

  void add(const Example& example) {
    if (!text.ends_with(".SH EXAMPLES\n")) addLine(".PP");
    addLine(roffRows(example.help));
    addLine(".PP");
    addLine(".nf");
    addLine(".RS");
    addLine(roff(example.line));
    addLine(".RE");
    addLine(".fi");
  }

  std::string take() { return std::move(text); }

 private:
  std::string text;
};

}  // namespace

std::string manualPage(const Program& program, std::string_view version) {
  ManualPage page;
  // The title line has no date: the page is the same whenever it is made.
  page.addLine(".TH TESSERA 1 \"\" \"tessera " + std::string(version) + "\" \"User Commands\"");
  page.addLine(".SH NAME");
  page.addLine("tessera \\- turn lines of source with comment markers into a structured document");
  page.addLine(".SH SYNOPSIS");
  page.addLine(bold("tessera") + " " + italic("COMMAND") + " [" + italic("OPTION") + "]... [" +
               italic("ARGUMENT") + "]...");
  page.addLine(".SH DESCRIPTION");
  page.addLine(roffRows(program.description));
  page.addLine(".SH OPTIONS");
  for (const Option& option : program.options) page.add(option);
  page.addLine(".SH COMMANDS");
  for (const Command& command : program.commands) page.add(command);
  page.addLine(".SH EXIT STATUS");
  for (const Meaning& status : program.statuses) {
    page.addTerm(bold(status.name), std::string(status.help));
  }
  page.addLine(".SH ENVIRONMENT");
  for (const Meaning& variable : program.environment) {
    page.addTerm(bold(variable.name), std::string(variable.help));
  }
  page.addLine(".SH EXAMPLES");
  for (const Command& command : program.commands) {
    for (const Example& example : command.examples) page.add(example);
  }
  return page.take();
}

}  // namespace tessera::commandline::generate
