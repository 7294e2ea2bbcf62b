#include "harness/countInstructions.hpp"

#include <valgrind/callgrind.h>

#include <iostream>

namespace bench {

void warmUp(Subject& subject) {
  subject.build();
  subject.check();
  subject.destroy();
}

void countInstructions(Subject& subject, const std::string& name) {
  CALLGRIND_START_INSTRUMENTATION;
  CALLGRIND_ZERO_STATS;
  subject.build();
  CALLGRIND_DUMP_STATS;
  CALLGRIND_STOP_INSTRUMENTATION;
  std::cout << "build|" << name << '\n';

  subject.check();
  CALLGRIND_START_INSTRUMENTATION;
  CALLGRIND_ZERO_STATS;
  subject.destroy();
  CALLGRIND_DUMP_STATS;
  CALLGRIND_STOP_INSTRUMENTATION;
  std::cout << "end|" << name << '\n';
}

}  // namespace bench
