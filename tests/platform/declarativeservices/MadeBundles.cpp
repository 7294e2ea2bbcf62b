#include "platform/declarativeservices/MadeBundles.hpp"

#include <cstddef>
#include <filesystem>
#include <sstream>
#include <utility>

#include <cppmicroservices/ServiceInterface.h>

#include "framework/broken/BundleFile.hpp"

using cppmicroservices::Bundle;
using cppmicroservices::BundleContext;
using cppmicroservices::InterfaceMap;
using cppmicroservices::ServiceRegistrationU;

namespace {

std::string listOf(const std::vector<std::string>& texts) {
  std::string list;
  for (const std::string& text : texts) {
    list.append(list.empty() ? "" : ",").append("\"").append(text).append("\"");
  }
  return "[" + list + "]";
}

void write(std::ostream& out, const MadeComponent& component) {
  out << R"({"implementation-class":")" << component.className << R"(","service":{"interfaces":)"
      << listOf(component.interfaces) << "}";
  const char* separator = R"(,"inject-references":true,"references":[)";
  for (const std::string& interfaceId : component.references) {
    out << std::exchange(separator, ",") << R"({"name":"word","interface":")" << interfaceId
        << R"("})";
  }
  out << (component.references.empty() ? "}" : "]}");
}

std::string manifestOf(const std::string& name, const std::vector<MadeComponent>& components) {
  std::ostringstream out;
  out << R"({"bundle.symbolic_name":")" << name << R"(","scr":{"version":1,"components":[)";
  const char* separator = "";
  for (const MadeComponent& component : components) {
    out << std::exchange(separator, ",");
    write(out, component);
  }
  out << "]}}";
  return out.str();
}

// The names are in the order of the numbers.
std::string nameOf(const std::string& library, std::size_t number) {
  return library + "_" + std::to_string(100000 + number);
}

}  // namespace

std::vector<Bundle> installMade(BundleContext context, const std::string& library,
                                const std::vector<std::vector<MadeComponent>>& bundles) {
  std::vector<std::pair<std::string, std::string>> files;
  for (std::size_t number = 0; number < bundles.size(); ++number) {
    const std::string name = nameOf(library, number);
    files.emplace_back(name + "/manifest.json", manifestOf(name, bundles[number]));
  }
  const std::string base = readBytes(BASE_LIBRARY);
  const std::string path = std::string(WORK_FOLDER) + "/" + library + ".so";
  std::filesystem::create_directories(WORK_FOLDER);
  // Not written over: a library of that name may be loaded.
  std::filesystem::remove(path);
  writeBytes(path, base + makeArchive(files, base.size()));
  return context.InstallBundles(path);
}

ServiceRegistrationU registerNamed(BundleContext context, const std::string& interfaceId) {
  const auto service = std::make_shared<InterfaceMap>();
  service->emplace(interfaceId, std::make_shared<int>(1));
  return context.RegisterService(service);
}
