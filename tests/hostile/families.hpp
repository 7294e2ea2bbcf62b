#pragma once

#include <vector>

#include "hostile/Family.hpp"

namespace hostile {

/// Returns all families; no two have the same name.
const std::vector<Family>& families();

// The families of one subject each.
std::vector<Family> textFamilies();
std::vector<Family> openingFamilies();
std::vector<Family> commentFamilies();
std::vector<Family> dataFamilies();
std::vector<Family> taskFamilies();
std::vector<Family> rangeFamilies();
std::vector<Family> appendixFamilies();
std::vector<Family> mistakeFamilies();
std::vector<Family> collidingFamilies();

}  // namespace hostile
