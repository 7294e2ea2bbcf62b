// A library without any function for frameworks.
extern "C" __attribute__((visibility("default"))) int bareNumber() {
  return 42;
}
