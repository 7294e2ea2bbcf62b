#pragma once

#include <string>
#include <string_view>

#include "tessera/check/catalogue/Catalogue.hpp"

namespace tessera::reports {

std::string_view sarifLevel(check::catalogue::Severity severity) noexcept;

/// Returns `diagnostic` as a SARIF result, compact JSON; `uri` is that of its file.
std::string sarifResult(const check::catalogue::Diagnostic& diagnostic, const std::string& uri,
                        const std::string& fingerprint);

/// Returns the text of a message so that no part of it is read as a link: "[text](target)" is one.
std::string withoutLinks(std::string_view text);

}  // namespace tessera::reports
