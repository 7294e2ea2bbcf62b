#include <limits>

int main(int argc, char** /*argv*/) {
  const volatile int largest = std::numeric_limits<int>::max();
  return largest + argc > 0 ? 0 : 1;
}
