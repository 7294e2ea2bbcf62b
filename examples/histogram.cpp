#include <array>
#include <cstdio>

// <@text:anchor#bins>
constexpr int kBins = 4;  /// <@control:number#bins [22,23] {"min":1,"max":64}>

int main() {
  std::array<int, kBins> counts{};
  for (const int value : {3, 1, 4, 1, 5, 9, 2, 6}) ++counts[value % kBins];
  // Two results in one line, the second inside the first:
  std::printf("%d of %d\n", counts[0], kBins);  // <@output#line [2,45]>  // <@output#first [28,37]>
  return 0;
}
