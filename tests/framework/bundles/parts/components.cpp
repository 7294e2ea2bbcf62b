#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "parts.hpp"
#include "quenlith/bundle/component.hpp"

namespace demo {

// Records the construction and the destruction of the component that contains it.
class Entry {
 public:
  Entry(std::shared_ptr<Ledger> ledger, std::string name)
      : book(std::move(ledger)), component(std::move(name)) {
    book->note("+" + component);
  }
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;
  ~Entry() { book->note("-" + component); }

 private:
  std::shared_ptr<Ledger> book;
  std::string component;
};

class Plain : public Word {
 public:
  std::string text() const override { return "plain"; }
};

class Pair : public Word, public Number {
 public:
  explicit Pair(std::shared_ptr<Ledger> ledger) : entry(std::move(ledger), "pair") {}
  std::string text() const override { return "pair"; }
  int value() const override { return 2; }

 private:
  Entry entry;
};

class FirstStep : public First {
 public:
  explicit FirstStep(std::shared_ptr<Ledger> ledger) : entry(std::move(ledger), "first") {}
  std::string path() const override { return "1"; }

 private:
  Entry entry;
};

class SecondStep : public Second {
 public:
  SecondStep(std::shared_ptr<Ledger> ledger, std::shared_ptr<First> before)
      : first(std::move(before)), entry(std::move(ledger), "second") {}
  std::string path() const override { return first->path() + "2"; }

 private:
  std::shared_ptr<First> first;
  Entry entry;
};

class ThirdStep : public Third {
 public:
  ThirdStep(std::shared_ptr<Second> before, std::shared_ptr<Ledger> ledger)
      : second(std::move(before)), entry(std::move(ledger), "third") {}
  std::string path() const override { return second->path() + "3"; }

 private:
  std::shared_ptr<Second> second;
  Entry entry;
};

class Throwing : public Broken {
 public:
  Throwing() { throw std::runtime_error("no luck"); }
};

class Dependent : public NeedsBroken {
 public:
  explicit Dependent(std::shared_ptr<Broken> needed) : broken(std::move(needed)) {}

 private:
  std::shared_ptr<Broken> broken;
};

class Ordered : public RightB {
 public:
  explicit Ordered(const std::shared_ptr<Ledger>& ledger) : entry(ledger, "ordered") {
    lastLedger = ledger.get();
  }

  // For the function that deletes the instance, which has no access to the references.
  static inline Ledger* lastLedger = nullptr;

 private:
  Entry entry;
};

}  // namespace demo

QUENLITH_COMPONENT(demo_Plain, demo::Plain, Provides<demo::Word>);
QUENLITH_COMPONENT(demo_Pair, demo::Pair, Provides<demo::Word, demo::Number>,
                   Reference<"ledger", demo::Ledger>);
QUENLITH_COMPONENT(demo_FirstStep, demo::FirstStep, Provides<demo::First>,
                   Reference<"ledger", demo::Ledger>);
QUENLITH_COMPONENT(demo_SecondStep, demo::SecondStep, Provides<demo::Second>,
                   Reference<"ledger", demo::Ledger>, Reference<"first", demo::First>);
QUENLITH_COMPONENT(demo_ThirdStep, demo::ThirdStep, Provides<demo::Third>,
                   Reference<"second", demo::Second>, Reference<"ledger", demo::Ledger>);
QUENLITH_COMPONENT(demo_Throwing, demo::Throwing, Provides<demo::Broken>);
QUENLITH_COMPONENT(demo_Dependent, demo::Dependent, Provides<demo::NeedsBroken>,
                   Reference<"broken", demo::Broken>);

using cppmicroservices::service::component::detail::ComponentInstance;

extern "C" QUENLITH_BUNDLE_EXPORT ComponentInstance* NewInstance_demo_Ordered() {
  using quenlith::bundle::Factory;
  using quenlith::bundle::Provides;
  using quenlith::bundle::Reference;
  return Factory<demo::Ordered, Provides<demo::RightB>, Reference<"ledger", demo::Ledger>>::make();
}

// Records when the runtime deletes the instance. The test keeps the ledger alive.
extern "C" QUENLITH_BUNDLE_EXPORT void DeleteInstance_demo_Ordered(ComponentInstance* instance) {
  demo::Ordered::lastLedger->note("instance removed");
  delete instance;
}
