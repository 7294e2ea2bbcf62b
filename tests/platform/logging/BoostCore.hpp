#pragma once

#include <functional>

/// What the tests do to the logging core itself; apart, since its headers are slow to compile.
namespace boost_core {

void setEnabled(bool enabled);

/// Makes `accept` the core's filter: false refuses a record before any sink is asked.
void setFilter(std::function<bool()> accept);
void resetFilter();

/// Emits one record through a logger of the library's own that carries no severity.
void emitForeignRecord();

/// Asks every sink of the core to flush.
void flush();

}  // namespace boost_core
