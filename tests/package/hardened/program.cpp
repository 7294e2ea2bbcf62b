#include <cstddef>
#include <cstdio>
#include <cstring>

int copyText(const char* text, char* output, std::size_t size);

int main(int argumentCount, char** arguments) {
  char output[100] = "";
  copyText(arguments[argumentCount - 1], output, std::strlen(arguments[argumentCount - 1]));
  std::puts(output);
}
