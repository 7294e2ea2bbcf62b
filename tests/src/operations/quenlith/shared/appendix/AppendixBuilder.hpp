#pragma once

#include <optional>

#include "cppmicroservices/ServiceInterface.h"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::shared::appendix {

struct AppendixEntry {
  fl::i18n::ustring text;
  std::optional<syntax::Marker> marker;
};

class AppendixBuilder {
 public:
  virtual ~AppendixBuilder();
  virtual void addEntry(const syntax::Marker& entry) = 0;
  virtual fl::i18n::ustring build() const = 0;
  virtual AppendixEntry findEntry(const syntax::Marker& marker) const = 0;
};

}  // namespace quenlith::shared::appendix
