// printLine: what a C++ program costs that does nothing but print one line.

#include <iostream>

int main() {
  std::cout << "one line\n";
  return 0;
}
