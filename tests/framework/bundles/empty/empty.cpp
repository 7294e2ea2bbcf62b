// A bundle needs a source file even if it does nothing.
namespace demo {

int nothing();
int nothing() {
  return 0;
}

}  // namespace demo
