#pragma once

#include "fl/i18n/ustring.hpp"

namespace quenlith::oracle {

/// Returns `line` with every "%%\" as "%%", left to right, in one pass.
inline fl::i18n::ustring normalise(const fl::i18n::ustring& line) {
  fl::i18n::ustring out;
  std::size_t position = 0;
  while (position < line.size()) {
    if (line.compare(position, 3, u"%%\\") == 0) {
      out += u"%%";
      position += 3;
    } else {
      out += line[position];
      position += 1;
    }
  }
  return out;
}

}  // namespace quenlith::oracle
