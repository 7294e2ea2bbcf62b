#include "quenlith/build/markup/code/EscapedLeader.hpp"

#include <boost/algorithm/string/replace.hpp>

namespace quenlith::build::markup::code {

namespace {

constexpr std::u16string_view kEscapedLeader = u"%%\\";

}  // namespace

bool hasEscapedLeader(std::u16string_view line) noexcept {
  return line.find(kEscapedLeader) != line.npos;
}

fl::i18n::ustring withoutEscapes(const fl::i18n::ustring& line) {
  return boost::algorithm::replace_all_copy(line, kEscapedLeader, std::u16string_view(u"%%"));
}

}  // namespace quenlith::build::markup::code
