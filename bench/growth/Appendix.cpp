#include <optional>
#include <string>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "growth/subjects.hpp"
#include "tessera/appendix/FileAppendix.hpp"

namespace bench::growth {

namespace {

using quenlith::syntax::Marker;
using tessera::appendix::FileAppendix;

class Appendix : public Subject {
 public:
  explicit Appendix(std::size_t count) {
    for (std::size_t number = 0; number < count; ++number) {
      entries.emplace_back(fl::i18n::utf8_to_ustring("<@task#t" + std::to_string(number) +
                                                     R"( {"run":"auto","text":"Fit"}>)"));
    }
  }

  void build() override {
    appendix.emplace();
    for (const Marker& entry : entries) appendix->addEntry(entry);
    found = 0;
    for (const Marker& entry : entries) found += appendix->findEntry(entry).marker ? 1 : 0;
  }
  void check() const override { expectCount("appendix, entries", found, entries.size()); }
  void destroy() override { appendix.reset(); }

 private:
  std::vector<Marker> entries;
  std::optional<FileAppendix> appendix;
  std::size_t found = 0;
};

}  // namespace

std::unique_ptr<Subject> makeAppendix(const Corpus& /*lines*/, std::size_t count) {
  return std::make_unique<Appendix>(count);
}

}  // namespace bench::growth
