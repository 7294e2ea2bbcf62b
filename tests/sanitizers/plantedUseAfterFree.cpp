#include <memory>

int main(int argc, char** /*argv*/) {
  auto owner = std::make_unique<int>(argc);
  // Volatile, or the compiler sees through it.
  int* volatile borrowed = owner.get();
  owner.reset();
  return *borrowed;
}
