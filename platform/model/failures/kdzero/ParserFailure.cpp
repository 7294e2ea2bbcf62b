#include "failures/kdzero/ParserFailure.hpp"

#include <boost/container_hash/hash.hpp>

using failures::kdzero::ParserFailure;

std::size_t std::hash<ParserFailure>::operator()(const ParserFailure& failure) const {
  const failures::kdzero::MarkerInfo& marker = failure.getMarkerInfo();
  std::size_t seed = 0;
  boost::hash_combine(seed, failure.getFailureId());
  boost::hash_combine(seed, marker.getMarkerId());
  boost::hash_combine(seed, marker.getFeatureId());
  boost::hash_combine(seed, marker.getSubFeatureId());
  for (const auto& [key, value] : failure.getFailureData()) {
    boost::hash_combine(seed, key);
    boost::hash_combine(seed, value.hash());
  }
  return seed;
}
