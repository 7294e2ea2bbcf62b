#include "fuzz/tessera/Workbench.hpp"

#include <array>

#include "fl/i18n/ustring.hpp"
#include "tessera/check/checkFile.hpp"
#include "tessera/pieces/PieceParser.hpp"
#include "tessera/source/SourceText.hpp"

namespace quenlith::fuzz {

SourceFile readFile(Choices& choices) {
  constexpr std::array<const char*, 8> kNames = {"a.py",   "a.m",   "a.cpp", "a.html",
                                                 "a.lisp", "a.bat", "a",     "a b\"\x1b<&>.hs"};
  SourceFile file;
  file.name = choices.pick(kNames);
  file.bytes = fl::i18n::ustring_to_utf8(fl::i18n::utf8_to_ustring(choices.rest()));
  return file;
}

Workbench& Workbench::get() {
  static Workbench workbench;
  return workbench;
}

tessera::session::ParsedFile Workbench::parse(const SourceFile& file) {
  return parser.parse(file.name, tessera::source::decodeSource(file.name, file.bytes));
}

tessera::check::catalogue::CheckedFile Workbench::check(const SourceFile& file) {
  return tessera::check::checkFile(file.name, parse(file), &isAccepted);
}

bool Workbench::isAccepted(const syntax::Marker& marker) {
  return tessera::pieces::PieceParser().canParse(marker);
}

}  // namespace quenlith::fuzz
