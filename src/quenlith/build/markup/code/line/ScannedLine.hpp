#pragma once

#include "fl/i18n/search.hpp"
#include "fl/i18n/ustring.hpp"

namespace quenlith::build::markup::code::line {

/// A line, and what one search found in it. Borrows the line.
class ScannedLine {
 public:
  explicit ScannedLine(const fl::i18n::ustring& text) noexcept
      : lineText(text), occurrence(fl::i18n::findOccurrence<u'@', u'\\'>(text)) {}

  const fl::i18n::ustring& text() const noexcept { return lineText; }

  /// Returns whether the line contains neither a marker nor an escaped leader. Most lines do not.
  bool isPlainText() const noexcept { return !occurrence.first && !mayContainEscapedLeader(); }
  bool mayContainEscapedLeader() const noexcept {
    return occurrence.second && fl::i18n::findOccurrence<u'%', u'\\'>(lineText).first;
  }

 private:
  const fl::i18n::ustring& lineText;
  // A marker contains "@", an escaped leader "\\". Of "<@" and "%%\\" these are the rarest units.
  fl::i18n::Occurrence occurrence;
};

}  // namespace quenlith::build::markup::code::line
