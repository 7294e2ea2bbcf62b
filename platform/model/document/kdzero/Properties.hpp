#pragma once

#include "kd/zero/meta/Property.hpp"

// The properties of the document classes.
namespace document::kdzero::properties {

/// The document's top-level nodes.
const kd::zero::meta::Property& topLevelNodes();
/// A node's children.
const kd::zero::meta::Property& children();
/// What a node is a child of: a node, or the document.
const kd::zero::meta::Property& parent();
/// A node's parser failures.
const kd::zero::meta::Property& parserFailures();
/// A node's contributor data.
const kd::zero::meta::Property& contributorData();

}  // namespace document::kdzero::properties
