namespace {

// Volatile, or the compiler leaves the allocation out.
int* volatile kept = nullptr;

}  // namespace

int main(int argc, char** /*argv*/) {
  kept = new int(argc);
  kept = nullptr;
  return 0;
}
