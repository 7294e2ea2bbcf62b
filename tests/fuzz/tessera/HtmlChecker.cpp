#include "fuzz/tessera/HtmlChecker.hpp"

#include <algorithm>
#include <array>

#include "fl/i18n/ustring.hpp"

namespace quenlith::fuzz {

namespace {

constexpr std::array<std::string_view, 4> kVoid = {"meta", "input", "br", "hr"};
// The only elements whose content is not markup.
constexpr std::array<std::string_view, 2> kRaw = {"style", "script"};
constexpr std::string_view kNameBytes = "abcdefghijklmnopqrstuvwxyz0123456789-";
constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr std::string_view kValueBytes = "0123456789_.,:;=' /+#-";

bool contains(const auto& list, std::string_view wanted) {
  return std::ranges::find(list, wanted) != list.end();
}

bool isValueByte(char byte) {
  return kLetters.find(byte) != kLetters.npos || kValueBytes.find(byte) != kValueBytes.npos;
}

bool isForbiddenUnit(char16_t unit) {
  if (unit < 0x20) return unit != u'\t' && unit != u'\n';
  return (unit >= 0x7F && unit <= 0x9F) || unit == 0x061C || (unit >= 0x200E && unit <= 0x200F) ||
         (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

class Reader {
 public:
  explicit Reader(std::string_view html) : html(html) {}

  HtmlContent read() {
    checkCharacters();
    take("<!DOCTYPE html>\n");
    while (at < html.size() && content.fault.empty()) readNext();
    if (!open.empty()) fail("an element is not closed: " + open.back());
    return std::move(content);
  }

 private:
  void fail(const std::string& rule) {
    if (!content.fault.empty()) return;
    const std::size_t begin = at - std::min<std::size_t>(at, 60);
    content.fault = rule + " at " + std::to_string(at) + ": ";
    content.fault += html.substr(begin, 120);
  }

  void checkCharacters() {
    const fl::i18n::ustring units = fl::i18n::utf8_to_ustring(html);
    if (fl::i18n::ustring_to_utf8(units) != html) fail("it is not UTF-8");
    if (std::ranges::any_of(units, isForbiddenUnit)) fail("it has a control character");
  }

  bool take(std::string_view word) {
    if (!html.substr(at).starts_with(word)) return false;
    at += word.size();
    return true;
  }

  std::string takeWhile(std::string_view bytes) {
    const std::size_t end = std::min(html.find_first_not_of(bytes, at), html.size());
    std::string taken(html.substr(at, end - at));
    at = end;
    return taken;
  }

  void readNext() {
    if (take("</")) return readEndTag();
    if (take("<")) return readStartTag();
    if (take("&")) return readEntity();
    const std::size_t end = std::min(html.find_first_of("<>&", at), html.size());
    if (end == at) return fail("> is not part of a tag");
    content.text += html.substr(at, end - at);
    at = end;
  }

  void readEntity() {
    if (take("lt;")) {
      content.text += '<';
    } else if (take("gt;")) {
      content.text += '>';
    } else if (take("amp;")) {
      content.text += '&';
    } else {
      fail("& is not part of an entity");
    }
  }

  void readStartTag() {
    const std::string name = takeWhile(kNameBytes);
    if (name.empty()) return fail("a tag has no name");
    if (name == "li" && !open.empty() && open.back() == "li") open.pop_back();
    std::vector<std::string> attributes;
    while (content.fault.empty() && !take(">")) readAttribute(attributes);
    content.elements.push_back(name);
    if (contains(kVoid, name)) return;
    open.push_back(name);
    if (contains(kRaw, name)) at = std::min(html.find("</" + name, at), html.size());
  }

  void readAttribute(std::vector<std::string>& attributes) {
    if (takeWhile(" \n").empty()) return fail("a tag is not closed");
    const std::string name = takeWhile(std::string(kNameBytes) + std::string(kLetters));
    if (name.empty() || name == "style" || name.starts_with("on")) {
      return fail("no attribute may be called \"" + name + "\"");
    }
    if (contains(attributes, name)) return fail("an attribute is there twice: " + name);
    attributes.push_back(name);
    if (take("=")) readValue();
  }

  void readValue() {
    const bool isQuoted = take("\"");
    const std::size_t begin = at;
    while (at < html.size() && isValueByte(html[at]) && (isQuoted || html[at] != ' ')) ++at;
    if (isQuoted ? !take("\"") : at == begin) fail("a value has an unusual form");
  }

  void readEndTag() {
    const std::string name = takeWhile(kNameBytes);
    if ((name == "ol" || name == "ul") && !open.empty() && open.back() == "li") open.pop_back();
    if (open.empty() || open.back() != name) return fail("an element is closed out of turn");
    open.pop_back();
    if (!take(">")) fail("an end tag is not closed");
  }

  std::string_view html;
  std::size_t at = 0;
  std::vector<std::string> open;
  HtmlContent content;
};

}  // namespace

HtmlContent readHtml(std::string_view html) {
  return Reader(html).read();
}

}  // namespace quenlith::fuzz
