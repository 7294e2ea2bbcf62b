#pragma once

#include "cppmicroservices/ServiceInterface.h"
#include "fl/i18n/ustring.hpp"
#include "quenlith/export/appendix.hpp"
#include "quenlith/shared/appendix/AppendixEntry.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::shared::appendix {

/// Service interface: the entries of a snippet's appendix.
///
/// An entry is a marker with its data; it belongs to the marker in the code with the same element
/// and id. The entries must not change while the lines of the snippet are parsed.
class QUENLITH_APPENDIX_EXPORT AppendixBuilder {
 public:
  virtual ~AppendixBuilder();

  /// Adds `entry`, unless there is an entry with the same element and id.
  virtual void addEntry(const quenlith::syntax::Marker& entry) = 0;

  /// Returns the whole appendix as text.
  virtual fl::i18n::ustring build() const = 0;

  /// Returns the entry that belongs to `marker`; an `AppendixEntry` without a marker if there is
  /// none.
  virtual AppendixEntry findEntry(const quenlith::syntax::Marker& marker) const = 0;
};

}  // namespace quenlith::shared::appendix

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(quenlith::shared::appendix::AppendixBuilder,
                                           "quenlith::shared::appendix::AppendixBuilder")
