#pragma once

#include "kd/zero/meta/Property.hpp"
#include "quenlith/export/model.hpp"

// The properties of the document classes.
namespace document::kdzero::properties {

/// The document's top-level nodes.
QUENLITH_MODEL_EXPORT extern const kd::zero::meta::Property kTopLevelNodes;
/// A node's children.
QUENLITH_MODEL_EXPORT extern const kd::zero::meta::Property kChildren;
/// The parent of a node: a node or the document.
QUENLITH_MODEL_EXPORT extern const kd::zero::meta::Property kParent;
/// A node's parser failures.
QUENLITH_MODEL_EXPORT extern const kd::zero::meta::Property kParserFailures;
/// A node's contributor data.
QUENLITH_MODEL_EXPORT extern const kd::zero::meta::Property kContributorData;

}  // namespace document::kdzero::properties
