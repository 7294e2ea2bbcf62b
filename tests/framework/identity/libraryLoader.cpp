// Loads libraries in the order of its arguments. The host has not initialized the streams of C++,
// as a host that is written in another language.
#include <dlfcn.h>

int main(int count, char** arguments) {
  for (int i = 1; i < count; ++i) {
    if (dlopen(arguments[i], RTLD_NOW) == nullptr) return 3;
  }
  return 0;
}
