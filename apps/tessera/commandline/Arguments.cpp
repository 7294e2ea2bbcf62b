#include "tessera/commandline/Arguments.hpp"

#include <stdexcept>

#include "tessera/commandline/program.hpp"

namespace tessera::commandline {

void Arguments::add(const Option& option, std::string value) {
  options[option.name].push_back(std::move(value));
}

const std::vector<std::string>& Arguments::values(std::string_view name) const {
  static const std::vector<std::string> kNone;
  if (findOption(*command, name) == nullptr) {
    throw std::logic_error("tessera " + std::string(command->name) + " has no option " +
                           std::string(name));
  }
  const auto found = options.find(name);
  return found == options.end() ? kNone : found->second;
}

const std::string* Arguments::find(std::string_view name) const {
  const std::vector<std::string>& found = values(name);
  return found.empty() ? nullptr : &found.back();
}

}  // namespace tessera::commandline
