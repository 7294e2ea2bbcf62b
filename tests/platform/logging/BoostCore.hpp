#pragma once

#include <functional>

/// Access to the logging core for tests. In a separate file, because its headers are slow to
/// compile.
namespace boost_core {

void setEnabled(bool enabled);

/// Makes `accept` the core's filter: a record is rejected before any sink is asked if it returns
/// false.
void setFilter(std::function<bool()> accept);
void resetFilter();

/// Emits one record without a severity through a logger class of the library.
void emitForeignRecord();

/// Asks every sink of the core to flush.
void flush();

}  // namespace boost_core
