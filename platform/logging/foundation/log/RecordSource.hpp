#pragma once

#include <boost/log/attributes/attribute_set.hpp>
#include <boost/log/core/core.hpp>

namespace foundation::log {

/// What records are opened with: the core that receives them, and the logger's attributes.
///
/// Code that includes this header must link Boost.Log. Other users of the logger need not.
struct RecordSource {
  boost::log::core_ptr core;
  boost::log::attribute_set attributes;
};

}  // namespace foundation::log
