#pragma once

#include <map>
#include <string_view>

#include "document/kdzero/Node.hpp"
#include "failures/kdzero/ParserFailure.hpp"
#include "fl/i18n/ustring.hpp"
#include "quenlith/shared/appendix/AppendixBuilder.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::code::task {

/// Adds the failures of the task markers of one snippet to their line nodes. The data of a failure
/// is the appendix entry of the marker; failures with the same entry share it.
class TaskFailures {
 public:
  /// Adds the failure of a task marker without a partner to `lineNode`.
  void addMissingPartner(document::kdzero::Node lineNode,
                         const shared::appendix::AppendixBuilder& appendixBuilder,
                         const syntax::Marker& taskMarker);

  /// Like `addMissingPartner`, but for a task marker inside another task.
  void addOverlapping(document::kdzero::Node lineNode,
                      const shared::appendix::AppendixBuilder& appendixBuilder,
                      const syntax::Marker& taskMarker);

  /// Forgets the entries.
  void clear() noexcept { entries.clear(); }

 private:
  /// An appendix entry, and a failure that has its data.
  struct Entry {
    syntax::Marker marker;
    failures::kdzero::ParserFailure failure;
  };

  void add(document::kdzero::Node lineNode,
           const shared::appendix::AppendixBuilder& appendixBuilder,
           const syntax::Marker& taskMarker, std::u16string_view failureId);
  failures::kdzero::ParserFailure makeFailure(
      const shared::appendix::AppendixBuilder& appendixBuilder, const syntax::Marker& taskMarker);

  // By the ids of the task markers. A source may have many markers of one id, whose entry is most
  // of the source: a copy of the data for each would take time and memory in proportion to the
  // square.
  std::map<fl::i18n::ustring, Entry> entries;
};

}  // namespace quenlith::build::markup::code::task
