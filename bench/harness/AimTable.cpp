#include "harness/AimTable.hpp"

#include <ostream>
#include <sstream>

namespace bench {

void AimTable::add(const std::string& what, const std::string& relation, double measured,
                   double limit, bool isMet) {
  std::ostringstream wanted;
  wanted << relation << limit;
  table.add({what, wanted.str(), decimal(measured, 3), isMet ? "yes" : "NO"});
  ++aims;
  metAims += isMet ? 1 : 0;
}

void AimTable::write(std::ostream& out) const {
  table.write(out);
  out << '\n' << metAims << " of " << aims << " aims met.\n";
}

}  // namespace bench
