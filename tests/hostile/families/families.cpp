#include "hostile/families.hpp"

#include <iterator>

namespace hostile {

const std::vector<Family>& families() {
  static const std::vector<Family> all = [] {
    std::vector<Family> collected;
    for (const auto make :
         {textFamilies, openingFamilies, commentFamilies, dataFamilies, taskFamilies, rangeFamilies,
          appendixFamilies, mistakeFamilies, collidingFamilies}) {
      std::vector<Family> some = make();
      collected.insert(collected.end(), std::make_move_iterator(some.begin()),
                       std::make_move_iterator(some.end()));
    }
    return collected;
  }();
  return all;
}

}  // namespace hostile
