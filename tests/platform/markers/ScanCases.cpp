#include "ScanCases.hpp"

#include <gtest/gtest.h>

#include <sstream>

#include "quenlith/syntax/markers.hpp"

namespace quenlith::syntax::test {

namespace {

using fl::i18n::ustring;
using fl::i18n::ustring_to_utf8;

std::string show(const std::vector<core::MarkerInfo>& markers) {
  std::ostringstream out;
  for (const core::MarkerInfo& info : markers) {
    out << (&info == markers.data() ? "" : " | ") << info.position << "+" << info.length << " "
        << ustring_to_utf8(info.marker.toString());
    if (info.range) {
      out << " [" << info.range->first << "," << info.range->second << ")";
    }
  }
  return out.str();
}

}  // namespace

std::string scan(const ustring& text) {
  return show(get_markers_from_snippet(text, false));
}

std::string scanAny(const ustring& text) {
  return show(get_markers_from_snippet(text, true));
}

void expectScans(const std::vector<ScanCase>& cases) {
  for (const auto& [text, markers] : cases) {
    EXPECT_EQ(scan(text), markers) << ustring_to_utf8(text);
  }
}

}  // namespace quenlith::syntax::test
