// A bundle that does nothing still has a file of its own.
namespace demo {

int nothing();
int nothing() {
  return 0;
}

}  // namespace demo
