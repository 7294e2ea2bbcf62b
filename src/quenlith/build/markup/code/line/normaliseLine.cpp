#include "quenlith/build/markup/code/line/normaliseLine.hpp"

#include <boost/algorithm/string/replace.hpp>
#include <string_view>

namespace quenlith::build::markup::code::line {

fl::i18n::ustring normaliseLine(const fl::i18n::ustring& line) {
  return boost::algorithm::replace_all_copy(line, std::u16string_view(u"%%\\"),
                                            std::u16string_view(u"%%"));
}

}  // namespace quenlith::build::markup::code::line
