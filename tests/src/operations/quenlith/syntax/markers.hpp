#pragma once

#include <vector>

#include "quenlith/build/markup/core/MarkerInfo.hpp"

namespace quenlith::syntax {

namespace core = build::markup::core;
using fl::i18n::ustring;

std::vector<core::MarkerInfo> get_markers_from_snippet(const ustring& text, bool anyElement);
std::optional<core::MarkerInfo> get_marker(const std::vector<core::MarkerInfo>& markers,
                                           const ustring& element, const ustring& type);
bool has_feature(const std::vector<core::MarkerInfo>& markers, const ustring& element);
bool has_feature(const ustring& text, const ustring& element);

}  // namespace quenlith::syntax
