#include "tessera/doctor/DiagnosisJson.hpp"

#include <cstdint>
#include <string_view>

#include "foundation/json/Writer.hpp"

namespace tessera::doctor {
namespace {

class JsonReport {
 public:
  explicit JsonReport(std::string& text) : json(text, foundation::json::Form::kIndented) {}

  void write(const Diagnosis& diagnosis) {
    json.beginObject();
    json.key("schemaVersion");
    json.number(std::uint64_t{1});
    writeMember("usable", diagnosis.problems.empty());
    json.key("program");
    json.beginObject();
    writeMembers(diagnosis.program);
    json.endObject();
    json.key("framework");
    json.beginObject();
    writeMember("kind", diagnosis.frameworkKind);
    writeMembers(diagnosis.framework);
    json.endObject();
    writeList("libraries", diagnosis.libraries);
    writeList("bundles", diagnosis.bundles);
    writeList("services", diagnosis.services);
    writeList("problems", diagnosis.problems);
    json.endObject();
  }

 private:
  void writeMember(std::string_view key, const std::string& value) {
    json.key(key);
    json.text(std::string_view(value));
  }

  void writeMember(std::string_view key, const std::vector<std::string>& values) {
    json.key(key);
    json.beginArray();
    for (const std::string& value : values) json.text(std::string_view(value));
    json.endArray();
  }

  void writeMember(std::string_view key, bool value) {
    json.key(key);
    json.boolean(value);
  }

  template <class Element>
  void writeList(std::string_view key, const std::vector<Element>& elements) {
    json.key(key);
    json.beginArray();
    for (const Element& element : elements) {
      json.beginObject();
      writeMembers(element);
      json.endObject();
    }
    json.endArray();
  }

  void writeMembers(const Library& library) {
    writeMember("name", library.name);
    writeMember("version", library.version);
    writeMember("file", library.file);
  }

  void writeMembers(const Wait& wait) {
    writeMember("reference", wait.reference);
    writeMember("interface", wait.interfaceId);
    writeMember("provider", wait.provider);
  }

  void writeMembers(const Component& component) {
    writeMember("name", component.name);
    writeMember("state", component.state);
    writeMember("interfaces", component.interfaceIds);
    writeList("waitsFor", component.waits);
  }

  void writeMembers(const Bundle& bundle) {
    writeMember("name", bundle.name);
    writeMember("version", bundle.version);
    writeMember("state", bundle.state);
    writeMember("role", bundle.role);
    writeMember("file", bundle.file);
    writeList("components", bundle.components);
  }

  void writeMembers(const Service& service) {
    writeMember("interfaces", service.interfaceIds);
    json.key("ranking");
    json.number(std::int64_t{service.ranking});
    writeMember("component", service.component);
    writeMember("bundle", service.bundle);
    writeMember("testId", service.testId);
    writeMember("default", service.isDefault);
  }

  void writeMembers(const diagnostics::Problem& problem) {
    writeMember("file", problem.file);
    writeMember("message", problem.what);
    writeMember("remedy", problem.remedy);
  }

  foundation::json::Writer json;
};

}  // namespace

void appendJson(std::string& text, const Diagnosis& diagnosis) {
  JsonReport(text).write(diagnosis);
  text += '\n';
}

}  // namespace tessera::doctor
