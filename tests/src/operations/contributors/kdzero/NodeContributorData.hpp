#pragma once

#include <boost/uuid/uuid.hpp>

#include "contributors/kdzero/LineData.hpp"
#include "fl/i18n/ustring.hpp"

namespace contributors::kdzero {

class NodeContributorDataImpl {
 public:
  void setContributingFeature(const fl::i18n::ustring& feature);
  kd::zero::ElementSequence<LineData>& getLineDataListMutable();
};

class NodeContributorData : public kd::zero::Handle<NodeContributorDataImpl> {
 public:
  class Builder {
   public:
    explicit Builder(const kd::zero::Model& model);
    NodeContributorData createNodeContributorData(const boost::uuids::uuid& uuid) const;
  };
};

}  // namespace contributors::kdzero
