#include <optional>
#include <string>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "growth/subjects.hpp"
#include "quenlith/shared/appendix/MarkerAppendix.hpp"

namespace bench::growth {

namespace {

using quenlith::shared::appendix::MarkerAppendix;
using quenlith::syntax::Marker;

class Appendix : public Subject {
 public:
  explicit Appendix(std::size_t count) {
    for (std::size_t number = 0; number < count; ++number) {
      texts.push_back(fl::i18n::utf8_to_ustring("<@task#t" + std::to_string(number) +
                                                R"( {"run":"auto","text":"Fit"}>)"));
    }
  }

  // New markers each time, because a marker caches its data after the first read.
  void build() override {
    appendix.emplace();
    for (const fl::i18n::ustring& text : texts) appendix->addEntry(Marker(text));
    found = 0;
    for (const fl::i18n::ustring& text : texts) {
      found += appendix->findEntry(Marker(text)).marker ? 1 : 0;
    }
  }
  void check() const override { expectCount("appendix, entries", found, texts.size()); }
  void destroy() override { appendix.reset(); }

 private:
  std::vector<fl::i18n::ustring> texts;
  std::optional<MarkerAppendix> appendix;
  std::size_t found = 0;
};

}  // namespace

std::unique_ptr<Subject> makeAppendix(const Corpus& /*lines*/, std::size_t count) {
  return std::make_unique<Appendix>(count);
}

}  // namespace bench::growth
