#include "platform/logging/BoostCore.hpp"

#include <boost/log/core.hpp>
#include <boost/log/sources/logger.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <utility>

namespace boost_core {

void setEnabled(bool enabled) {
  boost::log::core::get()->set_logging_enabled(enabled);
}

void setFilter(std::function<bool()> accept) {
  boost::log::core::get()->set_filter(
      [accept = std::move(accept)](const boost::log::attribute_value_set&) { return accept(); });
}

void resetFilter() {
  boost::log::core::get()->reset_filter();
}

void emitForeignRecord() {
  boost::log::sources::logger logger;
  BOOST_LOG(logger) << "foreign";
}

void flush() {
  boost::log::core::get()->flush();
}

}  // namespace boost_core
