namespace {

// Volatile, because the compiler would remove the allocation.
int* volatile kept = nullptr;

}  // namespace

int main(int argc, char** /*argv*/) {
  kept = new int(argc);
  kept = nullptr;
  return 0;
}
