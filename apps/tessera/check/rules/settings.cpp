#include "tessera/check/rules/settings.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/Lexer.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/markerText.hpp"
#include "tessera/spelling/areSimilar.hpp"

namespace tessera::check::rules {

using namespace scan;
namespace {

using namespace catalogue::forms;
using catalogue::Diagnostic;
using catalogue::DiagnosticKind;
using foundation::json::Lexer;
using foundation::json::Token;

constexpr std::array<std::u16string_view, 10> kSettings{
    u"taskClassDefFile", u"uniqueId", u"text",         u"run",      u"autorun",
    u"collapsed",        u"outputs",  u"variablesMap", u"appState", u"view"};

/// One member of the outermost object.
struct Setting {
  std::u16string key;
  /// With its quotes.
  std::u16string_view keyText;
  std::u16string_view valueText;
  Token valueKind = Token::kNull;
};

bool isOpening(Token token) {
  return token == Token::kBeginObject || token == Token::kBeginArray;
}

/// Reads the members of `data`, which is a well-formed object.
std::vector<Setting> readSettings(std::u16string_view data) {
  std::vector<Setting> settings;
  Lexer lexer(data, 0, foundation::json::Space::kBlanks);
  lexer.next();
  while (lexer.next() == Token::kKey) {
    Setting& setting = settings.emplace_back();
    setting.key = lexer.text();
    setting.keyText = data.substr(lexer.begin(), lexer.end() - lexer.begin());
    setting.valueKind = lexer.next();
    const std::size_t begin = lexer.begin();
    if (isOpening(setting.valueKind)) {
      while (lexer.depth() > 1) lexer.next();
    }
    setting.valueText = data.substr(begin, lexer.end() - begin);
  }
  return settings;
}

bool isOtherCase(std::u16string_view a, std::u16string_view b) {
  const auto lower = [](char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 0x20) : unit;
  };
  return a != b && std::ranges::equal(a, b, {}, lower, lower);
}

bool isKnownInOtherCase(const Setting& setting) {
  return std::ranges::any_of(
      kSettings, [&setting](std::u16string_view known) { return isOtherCase(known, setting.key); });
}

class SettingRule {
 public:
  SettingRule(const FoundMarker& entry, Findings& findings) : entry(entry), findings(findings) {
    if (!entry.parts.data.empty()) settings = readSettings(entry.parts.data);
  }

  void run() {
    std::set<std::u16string_view> keys;
    for (const Setting& setting : settings) {
      const bool isKnown = std::ranges::find(kSettings, setting.key) != kSettings.end();
      if (!keys.insert(setting.key).second) {
        report(DiagnosticKind::kDuplicateSetting, 0, setting.keyText, {quoted(setting.key)});
      } else if (!isKnown) {
        checkUnknown(setting);
      }
      if (isKnown && setting.valueKind != Token::kString) checkValue(setting);
    }
  }

 private:
  Diagnostic& report(DiagnosticKind kind, std::size_t form, std::u16string_view part,
                     std::initializer_list<std::string_view> arguments) {
    findings.diagnostics.push_back(
        catalogue::makeDiagnostic(kind, form, entry.spanOf(part), arguments));
    return findings.diagnostics.back();
  }

  void checkUnknown(const Setting& setting) {
    const auto similar = std::ranges::find_if(kSettings, [&setting](std::u16string_view known) {
      return spelling::areSimilar(known, setting.key);
    });
    const std::string name = quoted(setting.key);
    if (similar == kSettings.end()) {
      report(DiagnosticKind::kUnknownSetting, kSettingUnknown, setting.keyText, {name});
      return;
    }
    Diagnostic& diagnostic = report(DiagnosticKind::kUnknownSetting, kSettingSimilar,
                                    setting.keyText, {name, quoted(*similar)});
    const bool isThere = std::ranges::any_of(
        settings, [similar](const Setting& other) { return other.key == *similar; });
    // If the case of several keys has changed, that of the texts has probably, too.
    const bool isCaseLost =
        isKnownInOtherCase(setting) && std::ranges::count_if(settings, isKnownInOtherCase) > 1;
    if (isThere || isCaseLost) return;
    diagnostic.fix = {"replace " + name + " by " + quoted(*similar),
                      {{entry.spanOf(setting.keyText), quoted(*similar)}}};
  }

  void checkValue(const Setting& setting) {
    Diagnostic& diagnostic = report(DiagnosticKind::kSettingNotText, 0, setting.valueText,
                                    {quoted(setting.key), plainText(shortened(setting.valueText))});
    const Token kind = setting.valueKind;
    if (kind != Token::kNumber && kind != Token::kTrue && kind != Token::kFalse) return;
    const std::string text = quoted(setting.valueText);
    diagnostic.fix = {"replace " + plainText(setting.valueText) + " by " + text,
                      {{entry.spanOf(setting.valueText), text}}};
  }

  /// Returns a kind of value, or the value if it is short.
  static std::u16string_view shortened(std::u16string_view value) {
    if (value.front() == u'{') return u"an object";
    if (value.front() == u'[') return u"an array";
    return value.size() <= 20 ? value : u"this value";
  }

  const FoundMarker& entry;
  Findings& findings;
  std::vector<Setting> settings;
};

}  // namespace

std::span<const std::u16string_view> knownSettings() noexcept {
  return kSettings;
}

bool hasKnownSettings(const FoundMarker& entry) {
  if (entry.parts.data.empty()) return true;
  return std::ranges::all_of(readSettings(entry.parts.data), [](const Setting& setting) {
    return std::ranges::find(kSettings, setting.key) != kSettings.end();
  });
}

void checkSettings(const FoundMarker& entry, Findings& findings) {
  SettingRule(entry, findings).run();
}

}  // namespace tessera::check::rules
