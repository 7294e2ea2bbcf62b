#pragma once

#include <string>
#include <string_view>

#include "contributors/kdzero/NodeContributorData.hpp"
#include "document/kdzero/Node.hpp"
#include "failures/kdzero/ParserFailure.hpp"
#include "tessera/contentmodel/kdzero/LiveTaskData.hpp"

namespace tessera::tree {

// All texts are UTF-8 without control characters, on one line.

/// How much is said. kShort: long values are cut, and settings without an effect are left out.
enum class Detail { kShort, kFull };

/// Returns `id`, in quotes unless it is a name.
std::string idText(std::u16string_view id);

/// Returns what a node of a line is: for a piece what its marker says, else the name of the class.
std::string describeNode(const document::kdzero::Node& node, Detail detail);

/// Returns the id of a task, its text, and how many lines it has.
std::string describeTask(std::u16string_view id,
                         const tessera::contentmodel::kdzero::LiveTaskData& data);

/// Returns the settings of a task by the keys of the appendix; empty if it has none to be told.
std::string describeSettings(const tessera::contentmodel::kdzero::LiveTaskData& data,
                             std::u16string_view id, Detail detail);

/// Returns what a failure says about the marker, in the words of `tessera check`, with its data and
/// its id.
std::string describeFailure(const failures::kdzero::ParserFailure& failure, Detail detail);

/// Returns the feature and the data that it contributes to a node.
std::string describeContribution(const contributors::kdzero::NodeContributorData& contribution,
                                 Detail detail);

}  // namespace tessera::tree
