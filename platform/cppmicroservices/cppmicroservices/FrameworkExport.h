#pragma once

#include "quenlith/export/cppmicroservices.hpp"

/// Marks a function that a bundle offers to the framework under its C name.
#define US_ABI_EXPORT __attribute__((visibility("default")))
