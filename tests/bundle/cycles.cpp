// Runs whole life cycles of the parsers' bundle, and parses lines in each.
//
// usage: markup_cycles [COUNT [unasked]]
//
// Each cycle installs the bundle and an extension that contributes data, starts them, registers an
// appendix, parses lines with both parsers, unregisters the appendix, and stops and uninstalls the
// bundles. Meanwhile one thread registers and unregisters contributors and code element parsers,
// and one asks the parsers that it finds whether they accept a line. Fails when the framework
// reports a problem, when a line is not parsed as it should be, and when anything is left after a
// cycle. With `unasked` the last thread is left out: CppMicroServices 3.8.12 reports an error when
// a parser is got while its bundle stops.

#include <malloc.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/FrameworkFactory.h>

#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "foundation/cppmicroservices/getFramework.hpp"
#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/build/markup/contributordata/LineContributorDataParser.hpp"
#include "quenlith/shared/appendix/MarkerAppendix.hpp"

namespace {

using contributors::kdzero::LineData;
using cppmicroservices::Bundle;
using cppmicroservices::BundleContext;
using cppmicroservices::FrameworkEvent;
using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using document::kdzero::TesseraDocument;
using fl::i18n::ustring;
using foundation::cppmicroservices::setFramework;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::SnippetParser;
using quenlith::build::markup::SnippetType;
using quenlith::build::markup::code::CodeElement;
using quenlith::build::markup::code::CodeElementParser;
using quenlith::build::markup::contributordata::LineContributorDataParser;
using quenlith::shared::appendix::AppendixBuilder;
using quenlith::shared::appendix::MarkerAppendix;
using quenlith::syntax::Marker;

constexpr long kDefaultCount = 200;
constexpr std::size_t kGrowthBytes = std::size_t{256} << 10U;

void require(bool condition, const char* claim) {
  if (!condition) throw std::runtime_error(claim);
}

/// Contributes data to output markers, as the extension does.
class HostContributor final : public LineContributorDataParser {
 public:
  bool isApplicable(const Marker& marker) override { return marker.elementView() == u"output"; }
  std::pair<ustring, LineData> parse(const kd::zero::Model& model, const Marker&) override {
    return {u"host", LineData::Builder(model).createLineData({})};
  }
};

/// Keeps the text of control markers.
class HostElementParser final : public CodeElementParser {
 public:
  bool canParse(const Marker& marker) override { return marker.elementView() == u"control"; }
  Node parse(const kd::zero::Model& model, const CodeElement& element) override {
    PlainTextNode node = PlainTextNode::Builder(model).createPlainTextNode({});
    node->setText(element.text);
    return node;
  }
};

/// The threads that use the framework during the cycles.
class Others {
 public:
  explicit Others(const BundleContext& context) : context(context) {}
  ~Others() { join(); }
  Others(const Others&) = delete;
  Others& operator=(const Others&) = delete;

  void beginToComeAndGo() {
    threads.emplace_back([this] { repeat(&Others::comeAndGo); });
  }
  void beginToAsk() {
    threads.emplace_back([this] { repeat(&Others::ask); });
  }

  /// Ends the threads and returns how often they did something.
  long end() {
    join();
    require(!hasFailed, "another thread failed");
    return uses;
  }

 private:
  void join() {
    isOver = true;
    for (std::thread& thread : threads) thread.join();
    threads.clear();
  }

  void repeat(void (Others::*use)()) {
    try {
      for (; !isOver; ++uses) {
        (this->*use)();
        // Leaves the processor to the cycles.
        std::this_thread::sleep_for(std::chrono::microseconds(50));
      }
    } catch (const std::exception& error) {
      std::cerr << "another thread failed: " << error.what() << '\n';
      hasFailed = true;
    }
  }

  void comeAndGo() {
    auto contributor =
        context.RegisterService<LineContributorDataParser>(std::make_shared<HostContributor>());
    auto parser = context.RegisterService<CodeElementParser>(std::make_shared<HostElementParser>());
    contributor.Unregister();
    parser.Unregister();
  }

  void ask() {
    for (const auto& reference : context.GetServiceReferences<SnippetParser>()) {
      try {
        const auto parser = context.GetService(reference);
        require(!parser || parser->canParse({u"# <@task#t>", {}, {}}), "a line is not accepted");
      } catch (const std::invalid_argument&) {
        // It was unregistered after the lookup.
      }
    }
  }

  BundleContext context;
  std::atomic<bool> isOver = false;
  std::atomic<bool> hasFailed = false;
  std::atomic<long> uses = 0;
  std::vector<std::thread> threads;
};

std::size_t parserCount(const BundleContext& context) {
  return BundleContext(context).GetServiceReferences<SnippetParser>().size();
}

std::shared_ptr<SnippetParser> findParser(BundleContext context, const std::string& filter) {
  const auto references = context.GetServiceReferences<SnippetParser>(filter);
  require(references.size() == 1, "there is not one parser of a kind");
  auto parser = context.GetService(references.front());
  require(parser != nullptr, "a parser cannot be got");
  return parser;
}

void parseCode(const BundleContext& context) {
  const auto parser = findParser(context, "(priority=default)");
  const auto document = std::make_shared<TesseraDocument>();
  parser->parse(document,
                {u"print(x)  # <@output#o [0,8] {\"a\":1}> # <@control#c [6,7]>", {}, {}});
  require(document->getNumberOfChildren() == 1, "the line is not in the document");
  const Node line = document->getChildAt(0);
  // The extension's, and that of the other thread if it was there.
  const std::size_t contributions = line->getContributorData().size();
  require(contributions == 1 || contributions == 2, "the line has not the data of the extension");
}

void parseTask(const BundleContext& context) {
  const auto parser = findParser(context, "(test_id=TaskSnippetParserImpl)");
  const auto document = std::make_shared<TesseraDocument>();
  const ustring line = u"# <@task#t>";
  const ustring block = u"# <@task#t>\n# <@task#t>";
  parser->reset();
  SnippetType type;
  for (int i = 0; i < 2; ++i) {
    type = parser->parse(document, {line, type, block}).type;
    require(type.kind == (i == 0 ? 3 : 0), "the task is not open as it should be");
  }
  require(document->getNumberOfChildren() == 3, "the task is not in the document");
}

void runCycle(BundleContext context) {
  const std::size_t bundlesBefore = context.GetBundles().size();
  std::vector<Bundle> bundles;
  for (const char* library : {BUNDLE, OUTPUT_DATA}) {
    bundles.push_back(context.InstallBundles(library).at(0));
    bundles.back().Start();
  }
  require(parserCount(context) == 1, "the default parser is not registered");
  auto appendix = context.RegisterService<AppendixBuilder>(std::make_shared<MarkerAppendix>());
  require(parserCount(context) == 2, "the task parser is not registered");
  parseCode(context);
  parseTask(context);
  appendix.Unregister();
  require(parserCount(context) == 1, "the task parser is still registered");
  for (Bundle& bundle : bundles) {
    bundle.Stop();
    bundle.Uninstall();
  }
  require(parserCount(context) == 0, "a parser is still registered");
  require(context.GetBundles().size() == bundlesBefore, "a bundle is still installed");
}

// Returns the number of allocated bytes.
std::size_t liveBytes() {
  return mallinfo2().uordblks;
}

void runCycles(const BundleContext& context, long count, bool areAsked) {
  Others others(context);
  others.beginToComeAndGo();
  if (areAsked) others.beginToAsk();
  std::size_t early = 0;
  for (long cycle = 0; cycle < count; ++cycle) {
    if (cycle == count / 10) early = liveBytes();
    runCycle(context);
    if ((cycle + 1) % 10'000 == 0) std::cout << cycle + 1 << " cycles" << std::endl;
  }
  std::cout << count << " cycles; what other threads did meanwhile: " << others.end() << '\n';
  const std::size_t late = liveBytes();
  std::cout << "allocated: " << early << " bytes after a tenth, " << late << " at the end\n";
  // CppMicroServices 3.8.12 keeps some for each bundle that was installed.
  require(!EMBEDDED_FRAMEWORK || late < early + kGrowthBytes, "memory is left after the cycles");
}

void runInFramework(const std::function<void(const BundleContext&)>& run) {
  auto framework = cppmicroservices::FrameworkFactory().NewFramework();
  framework.Start();
  setFramework(std::make_shared<cppmicroservices::Framework>(framework));
  auto context = framework.GetBundleContext();
  std::atomic<long> problems = 0;
  context.AddFrameworkListener([&](const FrameworkEvent& event) {
    const auto severe = FrameworkEvent::FRAMEWORK_ERROR | FrameworkEvent::FRAMEWORK_WARNING;
    if ((event.GetType() & severe) == 0) return;
    ++problems;
    std::cerr << event.GetMessage() << '\n';
  });
  context.InstallBundles(SCR_BUNDLE).at(0).Start();
  run(context);
  setFramework(nullptr);
  framework.Stop();
  framework.WaitForStop(std::chrono::milliseconds::zero());
  require(problems == 0, "the framework reported problems");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const long count = argc > 1 ? std::stol(argv[1]) : kDefaultCount;
    runInFramework([&](const BundleContext& context) { runCycles(context, count, argc <= 2); });
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "markup_cycles: " << error.what() << '\n';
    return 1;
  }
}
