// printLine: a C++ program that only prints one line.

#include <iostream>

int main() {
  std::cout << "one line\n";
  return 0;
}
