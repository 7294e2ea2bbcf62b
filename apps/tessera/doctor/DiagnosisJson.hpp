#pragma once

#include <string>

#include "tessera/doctor/Diagnosis.hpp"

namespace tessera::doctor {

/// Appends `diagnosis` as one JSON object of the schema docs/doctor.schema.json and a line ending.
void appendJson(std::string& text, const Diagnosis& diagnosis);

}  // namespace tessera::doctor
