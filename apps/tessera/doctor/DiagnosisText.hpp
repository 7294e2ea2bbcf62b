#pragma once

#include <string>

#include "tessera/doctor/Diagnosis.hpp"

namespace tessera::doctor {

/// Appends `diagnosis` for people: what there is, then what is wrong and what to do about it.
void appendText(std::string& text, const Diagnosis& diagnosis, bool isColored);

}  // namespace tessera::doctor
