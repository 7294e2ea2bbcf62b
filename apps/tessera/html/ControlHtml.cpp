#include "tessera/html/ControlHtml.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/Writer.hpp"

namespace tessera::html {

using foundation::json::Array;
using foundation::json::Object;
using foundation::json::Value;

namespace {

// More options are listed in the data of the control only.
constexpr std::size_t kMostOptions = 12;

/// What is drawn: the marker's data, and the text that it is about.
struct Control {
  const Object& data;
  std::string text;
  std::u16string_view name;
  std::u16string_view type;
};

const Value* findMember(const Object& data, std::initializer_list<std::string_view> keys) {
  for (const std::string_view key : keys) {
    const auto found = data.find(std::string(key));
    if (found != data.end()) return &found->second;
  }
  return nullptr;
}

using Keys = std::initializer_list<std::string_view>;

/// Returns whether no member of `data` has a key other than `keys`, and of those that say the value
/// only one is there.
bool hasOnly(const Object& data, Keys keys) {
  if (data.contains("value") && data.contains("default")) return false;
  return std::ranges::all_of(data, [keys](const auto& member) {
    return std::ranges::find(keys, member.first) != keys.end();
  });
}

std::optional<double> numberOf(const Value* value) {
  if (value == nullptr) return std::nullopt;
  std::optional<double> number;
  if (const auto* wide = value->getIf<double>()) number = *wide;
  if (const auto* narrow = value->getIf<float>()) number = *narrow;
  if (const auto* whole = value->getIf<std::int64_t>()) number = static_cast<double>(*whole);
  if (const auto* natural = value->getIf<std::uint64_t>()) number = static_cast<double>(*natural);
  if (number && !std::isfinite(*number)) return std::nullopt;
  return number;
}

std::optional<double> numberOf(std::string_view text) {
  double number = 0;
  const char* const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, number);
  if (error != std::errc() || end != last || !std::isfinite(number)) return std::nullopt;
  return number;
}

/// Returns the value that the control is set to: the one in its data, else its text.
const Value* valueIn(const Control& control) {
  return findMember(control.data, {"value", "default"});
}

std::optional<bool> truthOf(const Value& value) {
  const bool* truth = value.getIf<bool>();
  return truth == nullptr ? std::nullopt : std::optional(*truth);
}

/// Returns the truth value that `text` is in a programming language.
std::optional<bool> truthInText(std::string_view text) {
  constexpr std::array<std::string_view, 3> kTrue = {"true", "True", "TRUE"};
  constexpr std::array<std::string_view, 3> kFalse = {"false", "False", "FALSE"};
  if (std::ranges::find(kTrue, text) != kTrue.end()) return true;
  if (std::ranges::find(kFalse, text) != kFalse.end()) return false;
  return std::nullopt;
}

std::optional<bool> truthOf(const Control& control) {
  const Value* value = valueIn(control);
  return value == nullptr ? truthInText(control.text) : truthOf(*value);
}

/// Returns a value as a reader wants to see it: a text without quotes, others as JSON.
std::string shownValue(const Value& value) {
  if (const auto* text = value.getIf<std::string>()) return *text;
  std::string json;
  foundation::json::Writer(json, foundation::json::Form::kCompact).value(value);
  return json;
}

/// Returns what an option is called: an option may be an object with a label and a value. An empty
/// name is shown with its quotes.
std::string shownOption(const Value& option) {
  const auto* members = option.getIf<Object>();
  const Value* label =
      members == nullptr ? nullptr : findMember(*members, {"label", "text", "name", "value"});
  const std::string name = shownValue(label == nullptr ? option : *label);
  return name.empty() ? "\"\"" : name;
}

const Value& valueOfOption(const Value& option) {
  const auto* members = option.getIf<Object>();
  const Value* value = members == nullptr ? nullptr : findMember(*members, {"value"});
  return value == nullptr ? option : *value;
}

/// Returns the text of a source without the quotes of a string.
std::string_view withoutQuotes(std::string_view text) noexcept {
  const bool isQuoted = text.size() >= 2 && text.front() == text.back() &&
                        (text.front() == '"' || text.front() == '\'' || text.front() == '`');
  return isQuoted ? text.substr(1, text.size() - 2) : text;
}

bool isChosen(const Control& control, const Value& option) {
  const Value& own = valueOfOption(option);
  if (const Value* value = valueIn(control)) return *value == own;
  if (const auto truth = truthOf(own)) return truth == truthInText(control.text);
  const std::string shown = shownValue(own);
  return shown == control.text || shown == withoutQuotes(control.text);
}

bool isObject(const Value& value) noexcept {
  return value.is<Object>();
}

/// Draws an option and returns whether it is the chosen one.
bool drawOption(HtmlText& html, const Control& control, const Value& option) {
  const bool isChecked = isChosen(control, option);
  html.add("<label><input type=radio disabled");
  if (isChecked) html.add(" checked");
  html.add(">", shownOption(option), "</label>");
  return isChecked;
}

/// Draws the options under `key` of the data.
bool drawChoice(HtmlText& html, const Control& control, std::string_view key,
                const Array& options) {
  html.add("<fieldset class=choice disabled><legend>", control.name, "</legend>");
  const std::size_t shown = std::min(options.size(), kMostOptions);
  bool showsValue = valueIn(control) == nullptr;
  for (std::size_t i = 0; i < shown; ++i) {
    if (drawOption(html, control, options[i])) showsValue = true;
  }
  if (shown < options.size()) html.add("<span>and ", options.size() - shown, " more</span>");
  html.add("</fieldset>");
  return showsValue && shown == options.size() && std::ranges::none_of(options, isObject) &&
         hasOnly(control.data, {key, "value", "default"});
}

bool drawCheckBox(HtmlText& html, const Control& control, bool isChecked) {
  html.add("<label class=check><input type=checkbox disabled");
  if (isChecked) html.add(" checked");
  html.add(">", control.name, "</label>");
  return hasOnly(control.data, {"value", "default"});
}

/// The bounds of a slider.
struct Bounds {
  double least;
  double most;
};

std::optional<Bounds> boundsOf(const Object& data) {
  const auto least = numberOf(findMember(data, {"min", "minimum"}));
  const auto most = numberOf(findMember(data, {"max", "maximum"}));
  if (!least || !most || *least >= *most) return std::nullopt;
  return Bounds{*least, *most};
}

bool drawSlider(HtmlText& html, const Control& control, const Bounds& bounds, double value) {
  html.add("<label class=slider>", control.name, "<input type=range disabled step=any min=");
  html.addNumber(bounds.least);
  html.add(" max=");
  html.addNumber(bounds.most);
  html.add(" value=");
  html.addNumber(std::clamp(value, bounds.least, bounds.most));
  html.add("></label><b>");
  html.addNumber(value);
  html.add("</b> <span class=q>");
  html.addNumber(bounds.least);
  html.add(" to ");
  html.addNumber(bounds.most);
  const Value* const stepValue = findMember(control.data, {"step"});
  const auto step = numberOf(stepValue);
  if (step) {
    html.add(", step ");
    html.addNumber(*step);
  }
  html.add("</span>");
  return (stepValue == nullptr || step) &&
         hasOnly(control.data, {"min", "max", "step", "value", "default"});
}

bool drawField(HtmlText& html, const Control& control) {
  const Value* value = valueIn(control);
  html.add(control.name, "<span class=field>", value == nullptr ? control.text : shownValue(*value),
           "</span>");
  if (!control.type.empty()) html.add("<span class=q>", control.type, "</span>");
  return hasOnly(control.data, {"value", "default"});
}

/// Returns the member of the data that lists the options of a choice; null if there is none.
const Object::value_type* findOptions(const Object& data) {
  for (const std::string_view key : {"options", "choices", "items", "values"}) {
    const auto found = data.find(std::string(key));
    if (found == data.end()) continue;
    const auto* options = found->second.getIf<Array>();
    return options == nullptr || options->empty() ? nullptr : &*found;
  }
  return nullptr;
}

bool drawAny(HtmlText& html, const Control& control) {
  if (const auto* list = findOptions(control.data)) {
    return drawChoice(html, control, list->first, list->second.get<Array>());
  }
  if (const auto truth = truthOf(control)) return drawCheckBox(html, control, *truth);
  const Value* set = valueIn(control);
  const auto value = set == nullptr ? numberOf(control.text) : numberOf(set);
  const auto bounds = boundsOf(control.data);
  if (bounds && value) return drawSlider(html, control, *bounds, *value);
  return drawField(html, control);
}

std::string trimmed(std::string text) {
  constexpr std::string_view kBlanks = " \t";
  text.erase(0, std::min(text.find_first_not_of(kBlanks), text.size()));
  text.erase(text.find_last_not_of(kBlanks) + 1);
  return text;
}

}  // namespace

bool drawControl(HtmlText& html, const pieces::PieceNode::Impl& control) {
  std::u16string_view name = control.getId();
  if (name.empty()) name = control.getType();
  if (name.empty()) name = u"control";
  return drawAny(html, {.data = control.getData(),
                        .text = trimmed(fl::i18n::ustring_to_utf8(control.getText())),
                        .name = name,
                        .type = control.getType()});
}

}  // namespace tessera::html
