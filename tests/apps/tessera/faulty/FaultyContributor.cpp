#include "FaultyContributor.hpp"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "fl/i18n/ustring.hpp"
#include "quenlith/bundle/component.hpp"

namespace tessera::tests {
namespace {

/// The sanitizers turn signals into exit statuses, unless they have their default effect again.
[[noreturn]] void endBySignal(int number) {
  ::signal(number, SIG_DFL);
  ::raise(number);
  std::_Exit(EXIT_FAILURE);
}

void cause(const std::string& fault) {
  if (fault == "abort") endBySignal(SIGABRT);
  if (fault == "kill") endBySignal(SIGKILL);
  if (fault == "segv") endBySignal(SIGSEGV);
  if (fault == "exit") std::_Exit(7);
  while (fault == "hang") ::pause();
  if (fault == "start slowly") ::sleep(2);
}

/// Runs when the library is loaded.
__attribute__((constructor)) void causeAtLoad() {
  const char* fault = std::getenv("TESSERA_TEST_FAULT");
  if (fault != nullptr) cause(fault);
}

}  // namespace

bool FaultyContributor::isApplicable(const quenlith::syntax::Marker& marker) {
  cause(fl::i18n::ustring_to_utf8(marker.getId()));
  return false;
}

std::pair<fl::i18n::ustring, contributors::kdzero::LineData> FaultyContributor::parse(
    const kd::zero::Model& /*model*/, const quenlith::syntax::Marker& /*marker*/) {
  return {};
}

}  // namespace tessera::tests

QUENLITH_COMPONENT(tessera_tests_FaultyContributor, tessera::tests::FaultyContributor,
                   Provides<quenlith::build::markup::contributordata::LineContributorDataParser>)
