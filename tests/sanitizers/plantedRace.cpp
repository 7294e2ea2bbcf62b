#include <thread>

namespace {

int shared = 0;

void count() {
  for (int i = 0; i < 1000; ++i) ++shared;
}

}  // namespace

int main() {
  std::thread other(count);
  count();
  other.join();
  return shared > 0 ? 0 : 1;
}
