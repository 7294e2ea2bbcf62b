#include <memory>

int main(int argc, char** /*argv*/) {
  auto owner = std::make_unique<int>(argc);
  // Volatile, because the compiler would recognise the fault.
  int* volatile borrowed = owner.get();
  owner.reset();
  return *borrowed;
}
