#pragma once

#include <string>
#include <string_view>

#include "tessera/files/OutputText.hpp"

/// Output that keeps what was written.
class WrittenText final : public tessera::files::OutputText {
 public:
  const std::string& all() const noexcept { return written; }

 private:
  void write(std::string_view piece) override { written += piece; }

  std::string written;
};
