#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/check/transfer/CheckResult.hpp"
#include "tessera/commands/Options.hpp"
#include "tessera/html/FileSection.hpp"
#include "tessera/run/FileJob.hpp"

namespace tessera::commands {

/// Parses and checks files, and writes their sections of a page. The text of a file is an encoded
/// SectionHead and the section; if it cannot be used, the head alone.
class PageJob final : public run::FileJob {
 public:
  /// Borrows all; `recording` may be null. Throws ProblemError when the services cannot be used.
  PageJob(const ParseOptions& options, const std::vector<inputs::Input>& inputs,
          session::Recording* recording, const workers::JobContext& context);

 private:
  struct CheckedDocument;

  void work(const std::string& path) override;
  void addProblem(const diagnostics::Problem& problem) override;

  CheckedDocument checkedDocument(const std::string& path);

  progress::Stage writing;
};

/// What the text of a file begins with.
struct SectionHead {
  html::SectionCounts counts;
  check::transfer::CheckResult result;
};

/// The numbers that precede the encoded result.
struct SectionHeadSizes {
  html::SectionCounts counts;
  std::uint64_t resultBytes = 0;
};

/// Returns `head` as bytes, for this program only.
std::string encodeHead(const SectionHead& head);

/// Returns how many of `bytes`, the begin of the text of a file, are its head; 0 if that is not
/// known yet.
std::uint64_t headBytes(std::string_view bytes) noexcept;

/// Returns the head that `encodeHead` made `bytes` from.
SectionHead decodeHead(std::string_view bytes);

}  // namespace tessera::commands
