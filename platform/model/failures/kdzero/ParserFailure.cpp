#include "failures/kdzero/ParserFailure.hpp"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "fl/i18n/KeyedHash.hpp"

namespace failures::kdzero {

using fl::i18n::KeyedHash;
using foundation::json::Array;
using foundation::json::Object;
using foundation::json::Value;

const ParserFailure::Data ParserFailure::kNoData;

namespace {

/// Adds the same for both zeros, which compare equal, and the same for all NaNs.
void addNumber(KeyedHash& hash, double number) noexcept {
  if (number == 0) number = 0;
  if (std::isnan(number)) number = std::numeric_limits<double>::quiet_NaN();
  hash.add(std::bit_cast<std::uint64_t>(number));
}

/// Adds `value` without the values that it contains, which are appended to `inner`.
void addShallow(KeyedHash& hash, const Value& value, std::vector<const Value*>& inner) {
  hash.add(static_cast<std::uint64_t>(value.kind()));
  if (const auto* flag = value.getIf<bool>()) hash.add(std::uint64_t{*flag});
  if (const auto* number = value.getIf<double>()) addNumber(hash, *number);
  if (const auto* number = value.getIf<float>()) addNumber(hash, double{*number});
  if (const auto* number = value.getIf<std::uint64_t>()) hash.add(*number);
  if (const auto* number = value.getIf<std::int64_t>()) {
    hash.add(static_cast<std::uint64_t>(*number));
  }
  if (const auto* text = value.getIf<std::string>()) hash.add(std::string_view(*text));
  if (const auto* array = value.getIf<Array>()) {
    hash.add(std::uint64_t{array->size()});
    for (const Value& element : *array) inner.push_back(&element);
  }
  if (const auto* object = value.getIf<Object>()) {
    hash.add(std::uint64_t{object->size()});
    for (const auto& [key, member] : *object) {
      hash.add(std::string_view(key));
      inner.push_back(&member);
    }
  }
}

void addData(KeyedHash& hash, const ParserFailure::Data& data) {
  std::vector<const Value*> pending;
  hash.add(std::uint64_t{data.size()});
  for (const auto& [key, value] : data) {
    hash.add(std::string_view(key));
    pending.push_back(&value);
  }
  while (!pending.empty()) {
    const Value& value = *pending.back();
    pending.pop_back();
    addShallow(hash, value, pending);
  }
}

}  // namespace
}  // namespace failures::kdzero

std::size_t std::hash<failures::kdzero::ParserFailure>::operator()(
    const failures::kdzero::ParserFailure& failure) const {
  using namespace failures::kdzero;
  const MarkerInfo& marker = failure.getMarkerInfo();
  KeyedHash hash(KeyedHash::keyOfProcess());
  for (const ParserFailure::ustring* text : {&failure.getFailureId(), &marker.getMarkerId(),
                                             &marker.getFeatureId(), &marker.getSubFeatureId()}) {
    hash.add(std::u16string_view(*text));
  }
  addData(hash, failure.getFailureData());
  return static_cast<std::size_t>(hash.finish());
}
