#include "programs/writeMarkedFile.hpp"

#include <fstream>

namespace bench::programs {

namespace {

constexpr std::size_t kEvery = 10;

/// Returns a range that contains the first character of the line, with a blank before it.
std::string rangeIn(const std::string& line) {
  const std::size_t first = line.find_first_not_of(" \t");
  const bool isAscii = first != line.npos && static_cast<unsigned char>(line[first]) < 0x80;
  if (!isAscii) return "";
  return " [" + std::to_string(first) + "," + std::to_string(first + 1) + "]";
}

std::string markerFor(std::size_t number, const std::string& line) {
  const std::string id = std::to_string(number);
  const std::string taskId = std::to_string(number / 5);
  switch (number % 5) {
    case 0:
      return "# <@output#o" + id + rangeIn(line) + R"( {"format":"short"}>)";
    case 1:
      return "# <@control:slider#c" + id + R"( {"min":0,"max":10,"step":0.5}>)";
    case 2:
      return "# <@text:anchor#a" + id + ">";
    default:
      return "# <@task#t" + taskId + ">";
  }
}

}  // namespace

void writeMarkedFile(const std::string& from, const std::string& to, std::size_t lineCount) {
  std::ifstream source(from);
  std::ofstream target(to);
  std::string line;
  // Whole tasks only.
  const std::size_t markerCount = lineCount / kEvery / 5 * 5;
  std::size_t markers = 0;
  for (std::size_t number = 0; number < lineCount && std::getline(source, line); ++number) {
    target << line;
    if (number % kEvery == 0 && markers < markerCount) target << "  " << markerFor(markers++, line);
    target << '\n';
  }
  target << "# <@appendix>\n";
  for (std::size_t task = 0; task < markers / 5; ++task) {
    target << "# <@task#t" << task << R"( {"text":"Fit a line","run":"auto"}>)" << '\n';
  }
}

}  // namespace bench::programs
