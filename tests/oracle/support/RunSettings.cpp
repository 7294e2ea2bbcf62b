#include "oracle/support/RunSettings.hpp"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>

#include "oracle/support/Random.hpp"

namespace quenlith::oracle {

namespace {

std::optional<std::uint64_t> numberFrom(const char* variable) {
  const char* text = std::getenv(variable);
  if (text == nullptr || *text == '\0') return std::nullopt;
  return std::strtoull(text, nullptr, 0);
}

std::uint64_t randomSeed() {
  std::random_device device;
  return (std::uint64_t{device()} << 32U) | device();
}

}  // namespace

RunSettings RunSettings::fromEnvironment(std::size_t wholeCases) {
  RunSettings settings;
  const auto seed = numberFrom("ORACLE_SEED");
  settings.seed = seed ? *seed : randomSeed();
  const std::uint64_t share =
      std::max<std::uint64_t>(1, numberFrom("ORACLE_SHARE").value_or(ORACLE_SHARE));
  settings.wholeCases = wholeCases;
  settings.cases =
      static_cast<std::size_t>(numberFrom("ORACLE_CASES").value_or(wholeCases / share));
  if (const auto only = numberFrom("ORACLE_CASE")) settings.only = static_cast<std::size_t>(*only);
  std::cout << "ORACLE_SEED=" << settings.seed << " ORACLE_CASES=" << settings.cases << '\n';
  return settings;
}

bool RunSettings::runCases(const std::function<bool(std::size_t)>& run) const {
  if (only) {
    run(*only);
    return false;
  }
  for (std::size_t number = 0; number < cases; ++number) {
    if (!run(number)) return false;
  }
  return true;
}

std::size_t RunSettings::leastOf(std::size_t wholeLeast) const {
  if (cases >= wholeCases) return wholeLeast;
  return std::max<std::size_t>(1, wholeLeast * cases / wholeCases / 4);
}

std::uint64_t RunSettings::seedOf(std::size_t caseNumber) const {
  return Random(seed + caseNumber * 0x2545F4914F6CDD1DU).next();
}

std::string RunSettings::repeatHint(std::size_t caseNumber) const {
  return "run again with ORACLE_SEED=" + std::to_string(seed) +
         " ORACLE_CASE=" + std::to_string(caseNumber);
}

}  // namespace quenlith::oracle
