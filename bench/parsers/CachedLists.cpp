#include "parsers/CachedLists.hpp"

#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"

namespace bench::parsers {

CachedLists::CachedLists()
    : elementParsers{std::make_shared<quenlith::build::markup::code::PlainTextNodeParserImpl>()} {}

}  // namespace bench::parsers
