#include "brokenBundles.hpp"

namespace {

// Returns a manifest with one component that has `members`.
std::string component(const std::string& members) {
  return R"({"bundle.symbolic_name":"broken","scr":{"version":1,"components":[{)" + members +
         "}]}}";
}

// Returns a manifest with a valid component that also has `members`.
std::string fine(const std::string& members) {
  return component(
      R"("implementation-class":"demo::Fine","service":{"interfaces":["demo::Broken"]})" + members);
}

std::string withClass(const std::string& name) {
  return component(R"("implementation-class":")" + name +
                   R"(","service":{"interfaces":["demo::Broken"]})");
}

// Returns a manifest with a component whose one reference has `members`.
std::string reference(const std::string& members) {
  return component(
      R"("implementation-class":"demo::Needs","service":{"interfaces":["demo::Broken"]},)"
      R"("inject-references":true,"references":[{)" +
      members + "}]");
}

// Returns a component that provides one interface and needs one or two others.
std::string waiting(const std::string& name, const std::string& provided, const std::string& needed,
                    const std::string& alsoNeeded = "") {
  const std::string second =
      alsoNeeded.empty() ? "" : R"(,{"name":"other","interface":")" + alsoNeeded + R"("})";
  return R"({"implementation-class":")" + name + R"(","service":{"interfaces":[")" + provided +
         R"("]},"inject-references":true,"references":[{"name":"word","interface":")" + needed +
         R"("})" + second + "]}";
}

std::string named(const std::string& members) {
  return R"({"bundle.symbolic_name":"broken")" + members + "}";
}

const std::string kFineName = R"("name":"word","interface":"demo::Word")";

}  // namespace

const std::vector<BrokenBundle>& brokenBundles() {
  static const std::vector<BrokenBundle> table{
      // The file.
      {"NoFile", Make::kNoFile, "",
       "FILE: the file cannot be read (No such file or directory); give the path of the library of "
       "a bundle"},
      {"Folder", Make::kFolder, "",
       "FILE: the file cannot be read (Is a directory); give the path of the library of a bundle"},
      {"EmptyFile", Make::kManifestOnly, "",
       "FILE: there is no complete zip archive at the end of the file; append a zip archive that "
       "contains <symbolic name>/manifest.json to the library, after it was stripped"},
      {"TextFile", Make::kManifestOnly, named(""),
       "FILE: there is no complete zip archive at the end of the file; append a zip archive that "
       "contains <symbolic name>/manifest.json to the library, after it was stripped"},
      {"NoArchive", Make::kNoArchive, "",
       "FILE: there is no complete zip archive at the end of the file; append a zip archive that "
       "contains <symbolic name>/manifest.json to the library, after it was stripped"},
      {"CutArchive", Make::kCutArchive, named(""),
       "FILE: there is no complete zip archive at the end of the file; append a zip archive that "
       "contains <symbolic name>/manifest.json to the library, after it was stripped"},
      {"WrongBytes", Make::kWrongBytes, named(""),
       "FILE: the zip archive at the end of the file is damaged (CRC error); append a zip archive "
       "that contains <symbolic name>/manifest.json to the library, after it was stripped"},
      {"EmptyArchive", Make::kEmptyArchive, "",
       "FILE: the zip archive at the end of the file has no manifest; append a zip archive that "
       "contains <symbolic name>/manifest.json to the library, after it was stripped"},
      {"NoManifest", Make::kOtherFile, named(""),
       "FILE: the zip archive at the end of the file has no manifest; append a zip archive that "
       "contains <symbolic name>/manifest.json to the library, after it was stripped"},
      {"ManifestOutsideOfAFolder", Make::kNoFolder, named(""),
       "FILE: the zip archive at the end of the file has no manifest; append a zip archive that "
       "contains <symbolic name>/manifest.json to the library, after it was stripped"},
      {"NoLibrary", Make::kArchiveOnly, named(""),
       "FILE: it is not a shared library: it does not begin as an ELF file; name the library of a "
       "bundle"},
      {"OtherMachine", Make::kOtherMachine, named(""),
       "FILE: it is a 32-bit library, and this is a 64-bit process; build it for the machine that "
       "the program was built for"},
      // The manifest.
      {"EmptyManifest", Make::kBundle, "",
       "FILE: broken/manifest.json cannot be used: it is not JSON at line 1, column 1: syntax "
       "error "
       "while parsing value - unexpected end of input; expected '[', '{', or a literal; correct "
       "the manifest and append the archive again"},
      {"BadJson", Make::kBundle, R"({"bundle.symbolic_name":"broken",})",
       "FILE: broken/manifest.json cannot be used: it is not JSON at line 1, column 34: syntax "
       "error while parsing object key - unexpected '}'; expected string literal; correct the "
       "manifest and append the archive again"},
      {"ManifestIsAList", Make::kBundle, R"(["broken"])",
       "FILE: broken/manifest.json cannot be used: it is not an object; correct the manifest and "
       "append the archive again"},
      {"KeyTwice", Make::kBundle, named(R"(,"a":1,"a":2)"),
       "FILE: broken/manifest.json cannot be used: the key \"a\" occurs twice; correct the "
       "manifest and append the archive again"},
      {"NumberTooLarge", Make::kBundle, named(R"(,"a":[-1e999])"),
       "FILE: broken/manifest.json cannot be used: the number -1e999 is too large; correct the "
       "manifest and append the archive again"},
      {"NoName", Make::kBundle, R"({"purpose":"parse"})",
       "FILE: broken/manifest.json cannot be used: \"bundle.symbolic_name\" is missing; correct "
       "the manifest and append the archive again"},
      {"NameIsANumber", Make::kBundle, R"({"bundle.symbolic_name":7})",
       "FILE: broken/manifest.json cannot be used: \"bundle.symbolic_name\" is not a text of "
       "letters, digits and _; correct the manifest and append the archive again"},
      {"NameIsEmpty", Make::kBundle, R"({"bundle.symbolic_name":""})",
       "FILE: broken/manifest.json cannot be used: \"bundle.symbolic_name\" is not a text of "
       "letters, digits and _; correct the manifest and append the archive again"},
      {"NameIsNoIdentifier", Make::kBundle, R"({"bundle.symbolic_name":"bro-ken"})",
       "FILE: broken/manifest.json cannot be used: \"bundle.symbolic_name\" is not a text of "
       "letters, digits and _; correct the manifest and append the archive again"},
      {"NameIsTaken", Make::kBundle,
       R"({"bundle.symbolic_name":"demo_parts","bundle.version":"1.2.3"})",
       "FILE: the values of \"bundle.symbolic_name\" and \"bundle.version\", demo_parts and 1.2.3, "
       "are those of OTHER already; change the name or the version of one of the two bundles or "
       "uninstall the other"},
      {"ActivatorIsAText", Make::kBundle, named(R"(,"bundle.activator":"yes")"),
       "FILE: broken/manifest.json cannot be used: \"bundle.activator\" is neither true nor false; "
       "correct the manifest and append the archive again"},
      {"NoActivator", Make::kBundle, named(R"(,"bundle.activator":true)"),
       "FILE: the library lacks _us_create_activator_broken or _us_destroy_activator_broken, but "
       "\"bundle.activator\" is true; use CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR in a source "
       "file that is compiled with US_BUNDLE_NAME=broken, or set \"bundle.activator\" to false"},
      // The descriptions of the components.
      {"ScrIsAList", Make::kBundle, named(R"(,"scr":[])"),
       "FILE: scr must be an object; correct the manifest of the bundle"},
      {"NoVersion", Make::kBundle, named(R"(,"scr":{"components":[]})"),
       "FILE: scr must have the key \"version\"; correct the manifest of the bundle"},
      {"OtherVersion", Make::kBundle, named(R"(,"scr":{"version":2,"components":[]})"),
       "FILE: scr.version must be 1; correct the manifest of the bundle"},
      {"VersionIsAText", Make::kBundle, named(R"(,"scr":{"version":"1","components":[]})"),
       "FILE: scr.version must be 1; correct the manifest of the bundle"},
      {"NoComponents", Make::kBundle, named(R"(,"scr":{"version":1})"),
       "FILE: scr must have the key \"components\"; correct the manifest of the bundle"},
      {"ComponentsAreEmpty", Make::kBundle, named(R"(,"scr":{"version":1,"components":[]})"),
       "FILE: scr.components must not be empty; correct the manifest of the bundle"},
      {"ComponentsAreNoList", Make::kBundle, named(R"(,"scr":{"version":1,"components":{}})"),
       "FILE: scr.components must be a list; correct the manifest of the bundle"},
      {"UnknownKeyOfScr", Make::kBundle, named(R"(,"scr":{"version":1,"componets":[]})"),
       "FILE: scr has the key \"componets\", which Declarative Services do not know; correct the "
       "manifest of the bundle"},
      {"ComponentIsAText", Make::kBundle,
       named(R"(,"scr":{"version":1,"components":["demo::Fine"]})"),
       "FILE: scr.components[0] must be an object; correct the manifest of the bundle"},
      {"NoClass", Make::kBundle, component(R"("service":{"interfaces":["demo::Broken"]})"),
       "FILE: scr.components[0] must have the key \"implementation-class\"; correct the manifest "
       "of "
       "the bundle"},
      {"ClassIsANumber", Make::kBundle, component(R"("implementation-class":7)"),
       "FILE: scr.components[0].implementation-class must be a text; correct the manifest of the "
       "bundle"},
      {"ClassIsEmpty", Make::kBundle, component(R"("implementation-class":"")"),
       "FILE: scr.components[0].implementation-class must not be empty; correct the manifest of "
       "the "
       "bundle"},
      {"NameTwice", Make::kBundle,
       named(
           R"(,"scr":{"version":1,"components":[)"
           R"({"implementation-class":"demo::Fine","service":{"interfaces":["demo::Broken"]}},)"
           R"({"implementation-class":"demo::Fine","service":{"interfaces":["demo::Broken"]}}]})"),
       "FILE: scr.components[1] is the second one named demo::Fine; correct the manifest of the "
       "bundle"},
      {"NoInterfaces", Make::kBundle,
       component(R"("implementation-class":"demo::Fine","service":{})"),
       "FILE: scr.components[0] (demo::Fine).service must have the key \"interfaces\"; correct the "
       "manifest of the bundle"},
      {"InterfacesAreEmpty", Make::kBundle,
       component(R"("implementation-class":"demo::Fine","service":{"interfaces":[]})"),
       "FILE: scr.components[0] (demo::Fine).service.interfaces must not be empty; correct the "
       "manifest of the bundle"},
      {"InterfacesAreAText", Make::kBundle,
       component(R"("implementation-class":"demo::Fine","service":{"interfaces":"demo::Broken"})"),
       "FILE: scr.components[0] (demo::Fine).service.interfaces must be a list; correct the "
       "manifest "
       "of the bundle"},
      {"InterfaceIsANumber", Make::kBundle,
       component(R"("implementation-class":"demo::Fine","service":{"interfaces":[7]})"),
       "FILE: scr.components[0] (demo::Fine).service.interfaces[0] must be a text; correct the "
       "manifest of the bundle"},
      {"PropertiesAreAList", Make::kBundle, fine(R"(,"properties":[])"),
       "FILE: scr.components[0] (demo::Fine).properties must be an object; correct the manifest of "
       "the bundle"},
      {"PropertyInAnotherSpelling", Make::kBundle, fine(R"(,"properties":{"Component.Name":"a"})"),
       "FILE: scr.components[0] (demo::Fine).properties has the key \"Component.Name\", which "
       "differs from \"component.name\" in case only; correct the manifest of the bundle"},
      {"PropertyOfTheFrameworkInAnotherSpelling", Make::kBundle,
       fine(R"(,"properties":{"ObjectClass":["a"]})"),
       "FILE: scr.components[0] (demo::Fine).properties has the key \"ObjectClass\", which differs "
       "from \"objectclass\" in case only; correct the manifest of the bundle"},
      {"InterfaceIsAScope", Make::kBundle,
       component(R"("implementation-class":"demo::Fine","service":{"interfaces":["::"]})"),
       "FILE: scr.components[0] (demo::Fine).service.interfaces[0] must name an interface; correct "
       "the manifest of the bundle"},
      {"UnknownKeyOfAComponent", Make::kBundle, fine(R"(,"refrences":[])"),
       "FILE: scr.components[0] (demo::Fine) has the key \"refrences\", which Declarative Services "
       "do not know; correct the manifest of the bundle"},
      {"ReferencesAreNoList", Make::kBundle, fine(R"(,"inject-references":true,"references":{})"),
       "FILE: scr.components[0] (demo::Fine).references must be a list; correct the manifest of "
       "the "
       "bundle"},
      {"ReferenceHasNoName", Make::kBundle, reference(R"("interface":"demo::Word")"),
       "FILE: scr.components[0] (demo::Needs).references[0] must have the key \"name\"; correct "
       "the "
       "manifest of the bundle"},
      {"ReferenceHasNoInterface", Make::kBundle, reference(R"("name":"word")"),
       "FILE: scr.components[0] (demo::Needs).references[0] must have the key \"interface\"; "
       "correct "
       "the manifest of the bundle"},
      {"UnknownKeyOfAReference", Make::kBundle, reference(kFineName + R"(,"cardinalty":"1..1")"),
       "FILE: scr.components[0] (demo::Needs).references[0] has the key \"cardinalty\", which "
       "Declarative Services do not know; correct the manifest of the bundle"},
      // Features that only an installed framework has.
      {"NoService", Make::kBundle, component(R"("implementation-class":"demo::Fine")"),
       "FILE: scr.components[0] (demo::Fine): the embedded framework has no components without a "
       "service; give it a \"service\" or use an installed CppMicroServices, which has it"},
      {"BindMethods", Make::kBundle, fine(R"(,"references":[{)" + kFineName + "}]"),
       "FILE: scr.components[0] (demo::Fine).references: the embedded framework has no bind "
       "methods; set \"inject-references\" to true or use an installed CppMicroServices, which has "
       "it"},
      {"SomeReferencesInjected", Make::kBundle, fine(R"(,"inject-references":["word"])"),
       "FILE: scr.components[0] (demo::Fine).inject-references: the embedded framework has no "
       "injection of a selection; leave it out or use an installed CppMicroServices, which has it"},
      {"OptionalReference", Make::kBundle, reference(kFineName + R"(,"cardinality":"0..1")"),
       "FILE: scr.components[0] (demo::Needs).references[0].cardinality: the embedded framework "
       "has no optional or multiple references; leave it out or use an installed CppMicroServices, "
       "which has it"},
      {"DynamicReference", Make::kBundle, reference(kFineName + R"(,"policy":"dynamic")"),
       "FILE: scr.components[0] (demo::Needs).references[0].policy: the embedded framework has no "
       "dynamic references; leave it out or use an installed CppMicroServices, which has it"},
      {"GreedyReference", Make::kBundle, reference(kFineName + R"(,"policy-option":"greedy")"),
       "FILE: scr.components[0] (demo::Needs).references[0].policy-option: the embedded framework "
       "has no greedy references; leave it out or use an installed CppMicroServices, which has it"},
      {"TargetFilter", Make::kBundle, reference(kFineName + R"(,"target":"a")"),
       "FILE: scr.components[0] (demo::Needs).references[0].target: the embedded framework has no "
       "target filters; leave it out or use an installed CppMicroServices, which has it"},
      {"ReferenceScope", Make::kBundle, reference(kFineName + R"(,"scope":"prototype")"),
       "FILE: scr.components[0] (demo::Needs).references[0].scope: the embedded framework has no "
       "references of that scope; leave it out or use an installed CppMicroServices, which has it"},
      {"ServiceScope", Make::kBundle,
       component(
           R"("implementation-class":"demo::Fine","service":{"interfaces":["demo::Broken"],"scope":"bundle"})"),
       "FILE: scr.components[0] (demo::Fine).service.scope: the embedded framework has no services "
       "of that scope; leave it out or use an installed CppMicroServices, which has it"},
      {"Immediate", Make::kBundle, fine(R"(,"immediate":true)"),
       "FILE: scr.components[0] (demo::Fine).immediate: the embedded framework has no immediate "
       "components; leave it out or use an installed CppMicroServices, which has it"},
      {"NotEnabled", Make::kBundle, fine(R"(,"enabled":false)"),
       "FILE: scr.components[0] (demo::Fine).enabled: the embedded framework has no components "
       "that are not enabled; leave it out or use an installed CppMicroServices, which has it"},
      {"ConfigurationPolicy", Make::kBundle, fine(R"(,"configuration-policy":"require")"),
       "FILE: scr.components[0] (demo::Fine).configuration-policy: the embedded framework has no "
       "configurations; leave it out or use an installed CppMicroServices, which has it"},
      {"ConfigurationPid", Make::kBundle, fine(R"(,"configuration-pid":["a"])"),
       "FILE: scr.components[0] (demo::Fine).configuration-pid: the embedded framework has no "
       "configurations; leave it out or use an installed CppMicroServices, which has it"},
      {"ComponentFactory", Make::kBundle, fine(R"(,"factory":"a")"),
       "FILE: scr.components[0] (demo::Fine).factory: the embedded framework has no component "
       "factories; leave it out or use an installed CppMicroServices, which has it"},
      {"FactoryProperties", Make::kBundle, fine(R"(,"factory-properties":{})"),
       "FILE: scr.components[0] (demo::Fine).factory-properties: the embedded framework has no "
       "component factories; leave it out or use an installed CppMicroServices, which has it"},
      // The factories.
      {"NoFactory", Make::kBundle, withClass("demo::Missing"),
       "FILE: component demo::Missing: the library exports no function NewInstance_demo_Missing; "
       "add QUENLITH_COMPONENT(demo_Missing, ...) to a source of the bundle"},
      {"NoSecondFunction", Make::kBundle, withClass("demo::Half"),
       "FILE: component demo::Half: the library exports no function DeleteInstance_demo_Half; add "
       "QUENLITH_COMPONENT(demo_Half, ...) to a source of the bundle"},
      {"FactoryReturnsNull", Make::kBundle, withClass("demo::Null"),
       "a service factory threw an exception: FILE: component demo::Null: cannot be made: out of "
       "memory, as its NewInstance_ function returned null; let its constructor do nothing that "
       "can fail, or ask for the service again"},
      {"FactoryThrows", Make::kBundle, withClass("demo::Thrower"),
       "a service factory threw an exception: FILE: component demo::Thrower: cannot be made: out "
       "of the factory; let its constructor do nothing that can fail, or ask for the service "
       "again"},
      {"ConstructorThrows", Make::kBundle, withClass("demo::ThrowsError"),
       "a service factory threw an exception: FILE: component demo::ThrowsError: cannot be made: "
       "no luck; let its constructor do nothing that can fail, or ask for the service again"},
      {"ConstructorThrowsANumber", Make::kBundle, withClass("demo::ThrowsNumber"),
       "a service factory threw an exception: FILE: component demo::ThrowsNumber: cannot be made: "
       "it threw something that is not a std::exception; let its constructor do nothing that can "
       "fail, or ask for the service again"},
      {"OtherInterface", Make::kBundle,
       component(
           R"("implementation-class":"demo::Fine","service":{"interfaces":["demo::Broken","demo::Number"]})"),
       "a service factory threw an exception: FILE: component demo::Fine: its factory does not "
       "provide demo::Number, which the manifest lists; make \"interfaces\" and the factory agree"},
      {"OtherReference", Make::kBundle, reference(R"("name":"term","interface":"demo::Word")"),
       "a service factory threw an exception: FILE: component demo::Needs: its factory asks for "
       "the reference word, which the manifest does not list; make \"references\" and the factory "
       "agree"},
      {"OtherTypeOfReference", Make::kBundle,
       named(
           R"(,"scr":{"version":1,"components":[{"implementation-class":"demo::Needs",)"
           R"("service":{"interfaces":["demo::Broken"]},"inject-references":true,"references":[{"name":"word","interface":"demo::Broken"}]}]})"),
       "a service factory threw an exception: FILE: component demo::Needs: its factory takes the "
       "reference word as demo::Word, which is demo::Broken in the manifest; make both agree"},
      {"Circle", Make::kBundle,
       named(
           R"(,"scr":{"version":1,"components":[{"implementation-class":"demo::Needs",)"
           R"("service":{"interfaces":["demo::LeftA"]},"inject-references":true,"references":[{"name":"word","interface":"demo::RightB"}]},)"
           R"({"implementation-class":"demo::Fine","service":{"interfaces":["demo::RightB"]},"inject-references":true,)"
           R"("references":[{"name":"other","interface":"demo::LeftA"}]}]})"),
       "FILE: components wait for each other and are not offered: demo::Needs needs demo::Fine "
       "needs demo::Needs; break the circle, or start a bundle that provides one of their "
       "interfaces"},
      {"CircleWithATail", Make::kBundle,
       named(R"(,"scr":{"version":1,"components":[)" +
             waiting("demo::ThrowsNumber", "demo::Third", "demo::First") + "," +
             waiting("demo::ThrowsError", "demo::Second", "demo::LeftA") + "," +
             waiting("demo::Needs", "demo::LeftA", "demo::RightB") + "," +
             waiting("demo::Fine", "demo::RightB", "demo::LeftA") + "]}"),
       "FILE: components wait for each other and are not offered: demo::Needs needs demo::Fine "
       "needs demo::Needs; break the circle, or start a bundle that provides one of their "
       "interfaces"},
      // An interface that no bundle provides is not part of the circle, wherever it is needed.
      {"CircleThatNeedsMore", Make::kBundle,
       named(R"(,"scr":{"version":1,"components":[)" +
             waiting("demo::Needs", "demo::LeftA", "demo::Missing", "demo::RightB") + "," +
             waiting("demo::Fine", "demo::RightB", "demo::LeftA") + "]}"),
       "FILE: components wait for each other and are not offered: demo::Needs needs demo::Fine "
       "needs demo::Needs; break the circle, or start a bundle that provides one of their "
       "interfaces"},
      {"CircleWithASecondProvider", Make::kBundle,
       named(R"(,"scr":{"version":1,"components":[)" +
             waiting("demo::ThrowsError", "demo::RightB", "demo::Missing") + "," +
             waiting("demo::Needs", "demo::LeftA", "demo::RightB") + "," +
             waiting("demo::Fine", "demo::RightB", "demo::LeftA") + "]}"),
       "FILE: components wait for each other and are not offered: demo::Needs needs demo::Fine "
       "needs demo::Needs; break the circle, or start a bundle that provides one of their "
       "interfaces"},
      {"CircleThatNeedsAWaitingComponent", Make::kBundle,
       named(R"(,"scr":{"version":1,"components":[)" +
             waiting("demo::ThrowsError", "demo::Third", "demo::Missing") + "," +
             waiting("demo::Needs", "demo::LeftA", "demo::Third", "demo::RightB") + "," +
             waiting("demo::Fine", "demo::RightB", "demo::LeftA") + "]}"),
       "FILE: components wait for each other and are not offered: demo::Needs needs demo::Fine "
       "needs demo::Needs; break the circle, or start a bundle that provides one of their "
       "interfaces"},
      {"NeedsItself", Make::kBundle,
       named(
           R"(,"scr":{"version":1,"components":[{"implementation-class":"demo::Needs",)"
           R"("service":{"interfaces":["demo::LeftA"]},"inject-references":true,"references":[{"name":"word","interface":"demo::LeftA"}]}]})"),
       "FILE: components wait for each other and are not offered: demo::Needs needs demo::Needs; "
       "break the circle, or start a bundle that provides one of their interfaces"},
  };
  return table;
}
