#include "tessera/check/scan/StringSyntax.hpp"

#include <algorithm>
#include <utility>

namespace tessera::check::scan {
namespace {

constexpr StringForm kDouble{.opener = u"\"", .closer = u"\""};
constexpr StringForm kSingle{.opener = u"'", .closer = u"'"};
constexpr StringForm kDoubleOfLines{.opener = u"\"", .closer = u"\"", .spansLines = true};
constexpr StringForm kTripleDouble{.opener = u"\"\"\"", .closer = u"\"\"\"", .spansLines = true};
constexpr StringForm kTripleSingle{.opener = u"'''", .closer = u"'''", .spansLines = true};

constexpr StringForm kCStrings[] = {kDouble, kSingle};
constexpr StringForm kPythonStrings[] = {kTripleDouble, kTripleSingle, kDouble, kSingle};
constexpr StringForm kJavaStrings[] = {kTripleDouble, kDouble, kSingle};
constexpr StringForm kGoStrings[] = {
    kDouble,
    kSingle,
    {.opener = u"`", .closer = u"`", .escape = Escape::kNone, .spansLines = true}};
constexpr StringForm kRustStrings[] = {kDoubleOfLines};
constexpr StringForm kDoubleStrings[] = {kDouble};

/// Returns `form` for the strings after `prefix`.
constexpr StringForm after(std::u16string_view prefix, StringForm form) {
  form.prefix = prefix;
  return form;
}

/// Returns `form` for strings with code in them.
constexpr StringForm withCode(std::u16string_view interpolation, StringForm form) {
  form.interpolation = interpolation;
  return form;
}

constexpr StringForm withoutEscapes(StringForm form) {
  form.escape = Escape::kNone;
  return form;
}

constexpr StringForm afterName(StringForm form) {
  form.needsName = true;
  return form;
}

constexpr StringForm kVerbatim{
    .opener = u"\"", .closer = u"\"", .escape = Escape::kDoubled, .spansLines = true};
constexpr StringForm kCSharpStrings[] = {
    after(u"$@", withCode(u"{", kVerbatim)), after(u"@$", withCode(u"{", kVerbatim)),
    after(u"@", kVerbatim), after(u"$", withCode(u"{", kDouble)), kDouble};

constexpr StringForm kGreedy{.opener = u"\"\"\"",
                             .closer = u"\"\"\"",
                             .escape = Escape::kNone,
                             .spansLines = true,
                             .mayEndInQuotes = true};
constexpr StringForm kKotlinStrings[] = {withCode(u"${", kGreedy), withCode(u"${", kDouble)};
constexpr StringForm kScalaStrings[] = {afterName(withCode(u"${", kGreedy)), kGreedy,
                                        afterName(withCode(u"${", kDouble)), kDouble};
constexpr StringForm kSwiftStrings[] = {withCode(u"\\(", kTripleDouble), withCode(u"\\(", kDouble)};
constexpr StringForm kDartStrings[] = {after(u"r", withoutEscapes(kTripleDouble)),
                                       after(u"r", withoutEscapes(kTripleSingle)),
                                       after(u"r", withoutEscapes(kDouble)),
                                       after(u"r", withoutEscapes(kSingle)),
                                       withCode(u"${", kTripleDouble),
                                       withCode(u"${", kTripleSingle),
                                       withCode(u"${", kDouble),
                                       withCode(u"${", kSingle)};
constexpr StringForm kTomlStrings[] = {kTripleDouble, withoutEscapes(kTripleSingle), kDouble,
                                       withoutEscapes(kSingle)};
constexpr StringForm kPhpStrings[] = {withCode(u"{$", kDoubleOfLines),
                                      {.opener = u"'", .closer = u"'", .spansLines = true},
                                      {.opener = u"`", .closer = u"`", .spansLines = true}};

constexpr StringSyntax kPython{.strings = kPythonStrings, .lineComments = {u"#"}};
constexpr StringSyntax kC{.strings = kCStrings,
                          .lineComments = {u"//"},
                          .blockOpener = u"/*",
                          .blockCloser = u"*/",
                          .delimited = DelimitedString::kParenthesis,
                          .hasDigitSeparators = true};
constexpr StringSyntax kJava{
    .strings = kJavaStrings, .lineComments = {u"//"}, .blockOpener = u"/*", .blockCloser = u"*/"};
constexpr StringSyntax kGo{
    .strings = kGoStrings, .lineComments = {u"//"}, .blockOpener = u"/*", .blockCloser = u"*/"};
constexpr StringSyntax kCSharp{.strings = kCSharpStrings,
                               .lineComments = {u"//"},
                               .blockOpener = u"/*",
                               .blockCloser = u"*/",
                               .delimited = DelimitedString::kQuotes,
                               .hasCharacters = true};
constexpr StringSyntax kRust{.strings = kRustStrings,
                             .lineComments = {u"//"},
                             .blockOpener = u"/*",
                             .blockCloser = u"*/",
                             .blockCommentsNest = true,
                             .delimited = DelimitedString::kHashesAfterR,
                             .hasCharacters = true};
constexpr StringSyntax kKotlin{.strings = kKotlinStrings,
                               .lineComments = {u"//"},
                               .blockOpener = u"/*",
                               .blockCloser = u"*/",
                               .blockCommentsNest = true,
                               .hasCharacters = true};
constexpr StringSyntax kScala{.strings = kScalaStrings,
                              .lineComments = {u"//"},
                              .blockOpener = u"/*",
                              .blockCloser = u"*/",
                              .blockCommentsNest = true,
                              .hasCharacters = true};
constexpr StringSyntax kSwift{.strings = kSwiftStrings,
                              .lineComments = {u"//"},
                              .blockOpener = u"/*",
                              .blockCloser = u"*/",
                              .blockCommentsNest = true,
                              .delimited = DelimitedString::kHashes,
                              .hasPatterns = true};
constexpr StringSyntax kDart{.strings = kDartStrings,
                             .lineComments = {u"//"},
                             .blockOpener = u"/*",
                             .blockCloser = u"*/",
                             .blockCommentsNest = true};
constexpr StringSyntax kHaskell{.strings = kDoubleStrings,
                                .lineComments = {u"--"},
                                .blockOpener = u"{-",
                                .blockCloser = u"-}",
                                .blockCommentsNest = true,
                                .hasCharacters = true,
                                .isHaskell = true};
constexpr StringSyntax kLua{
    .strings = kCStrings, .lineComments = {u"--"}, .delimited = DelimitedString::kBrackets};
constexpr StringSyntax kPhp{.strings = kPhpStrings,
                            .lineComments = {u"//", u"#"},
                            .blockOpener = u"/*",
                            .blockCloser = u"*/",
                            .requiredStart = u"<?php",
                            .uncertain = {u"?>", u"<<<"}};
constexpr StringSyntax kToml{.strings = kTomlStrings, .lineComments = {u"#"}};
constexpr StringSyntax kCss{.strings = kCStrings, .blockOpener = u"/*", .blockCloser = u"*/"};
constexpr StringSyntax kJson{.strings = kDoubleStrings};

constexpr std::pair<std::string_view, const StringSyntax*> kExtensions[] = {
    {"py", &kPython},  {"pyi", &kPython},  {"c", &kC},       {"h", &kC},         {"cc", &kC},
    {"hh", &kC},       {"cpp", &kC},       {"hpp", &kC},     {"cxx", &kC},       {"hxx", &kC},
    {"java", &kJava},  {"go", &kGo},       {"cs", &kCSharp}, {"rs", &kRust},     {"kt", &kKotlin},
    {"kts", &kKotlin}, {"scala", &kScala}, {"sc", &kScala},  {"swift", &kSwift}, {"dart", &kDart},
    {"hs", &kHaskell}, {"lua", &kLua},     {"php", &kPhp},   {"toml", &kToml},   {"css", &kCss},
    {"json", &kJson},
};

}  // namespace

const StringSyntax* stringSyntaxOf(std::string_view path) noexcept {
  const std::size_t dot = path.rfind('.');
  if (dot == path.npos || path.find('/', dot) != path.npos) return nullptr;
  const std::string_view extension = path.substr(dot + 1);
  const auto found =
      std::ranges::find(kExtensions, extension, [](const auto& entry) { return entry.first; });
  return found == std::end(kExtensions) ? nullptr : found->second;
}

}  // namespace tessera::check::scan
