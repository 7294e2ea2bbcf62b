#pragma once

#include <boost/log/attributes/attribute_set.hpp>
#include <boost/log/core/core.hpp>

namespace foundation::log {

/// What records are opened with: the core that they are pushed to, and the logger's attributes.
///
/// Whoever includes this links Boost.Log. Other users of the logger need not.
struct RecordSource {
  boost::log::core_ptr core;
  boost::log::attribute_set attributes;
};

}  // namespace foundation::log
