#include "oracle/support/ResultText.hpp"

#include <exception>
#include <stdexcept>

#include "oracle/support/World.hpp"
#include "oracle/support/show.hpp"

namespace quenlith::oracle {

std::string showResult(const build::markup::ParseResult& result) {
  std::string out = "result {" + std::to_string(result.type.group) + ',' +
                    std::to_string(result.type.kind) + "} flag " + (result.flag ? "1" : "0");
  for (const auto& type : result.markerTypes) out += ' ' + show(type);
  return out;
}

std::string meaningOfException() {
  try {
    throw;
  } catch (const ServiceFailure& failure) {
    return std::string("throws ") + failure.what();
  } catch (const std::runtime_error& error) {
    const std::string text = error.what();
    const bool missing = text.find("default code element parser") != std::string::npos;
    return missing ? "throws for want of a default parser" : "throws runtime_error " + text;
  } catch (const std::exception& error) {
    return std::string("throws exception ") + error.what();
  } catch (int number) {
    return "throws the number " + std::to_string(number);
  }
}

}  // namespace quenlith::oracle
