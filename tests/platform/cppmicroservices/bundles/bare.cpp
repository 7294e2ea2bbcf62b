// A library that knows nothing of frameworks.
extern "C" __attribute__((visibility("default"))) int bareNumber() {
  return 42;
}
