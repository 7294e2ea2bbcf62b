#include "kd/zero/ChangeListener.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/model/Box.hpp"

namespace {

using kd::zero::AbstractOwnedCollection;
using kd::zero::Model;
using kd::zero::OCDChange;
using quenlith::test::Box;
using quenlith::test::makeBox;

/// Appends its name to a string at each notification, then calls its action.
class Listener final : public kd::zero::ChangeListener {
 public:
  Listener(std::string& told, char name) : told(told), name(name) {}
  void modifying(const AbstractOwnedCollection&, std::unique_ptr<OCDChange>) override {
    told += name;
    if (action) action();
  }
  std::function<void()> action;

 private:
  std::string& told;
  char name;
};

class ChangeListener : public testing::Test {
 protected:
  /// Appends a word and returns the names of the listeners that were notified.
  std::string toldOfAnAppend() {
    told.clear();
    owner->words.add("word");
    return told;
  }

  Model model = Model::create();
  Box owner = makeBox(model);
  std::string told;
  Listener a{told, 'a'};
  Listener b{told, 'b'};
  Listener c{told, 'c'};
};

TEST_F(ChangeListener, AreToldInTheOrderInWhichTheyWereAdded) {
  EXPECT_EQ(toldOfAnAppend(), "");
  model.addListener(b);
  model.addListener(a);
  EXPECT_EQ(toldOfAnAppend(), "ba");
}

TEST_F(ChangeListener, IsToldOfChangesOfItsModelOnly) {
  Model::create().addListener(a);
  EXPECT_EQ(toldOfAnAppend(), "");
}

TEST_F(ChangeListener, AddedTwiceIsToldTwice) {
  model.addListener(a);
  model.addListener(b);
  model.addListener(a);
  EXPECT_EQ(toldOfAnAppend(), "aba");
  model.removeListener(a);
  EXPECT_EQ(toldOfAnAppend(), "ba");
  model.removeListener(a);
  EXPECT_EQ(toldOfAnAppend(), "b");
}

TEST_F(ChangeListener, ThatIsNotThereCanBeRemoved) {
  model.removeListener(a);
  model.addListener(b);
  model.removeListener(a);
  EXPECT_EQ(toldOfAnAppend(), "b");
}

TEST_F(ChangeListener, AddedMeanwhileIsToldFromTheNextChangeOn) {
  model.addListener(a);
  a.action = [this] {
    a.action = nullptr;
    model.addListener(b);
  };
  EXPECT_EQ(toldOfAnAppend(), "a");
  EXPECT_EQ(toldOfAnAppend(), "ab");
}

TEST_F(ChangeListener, MayRemoveItself) {
  model.addListener(a);
  model.addListener(b);
  a.action = [this] { model.removeListener(a); };
  EXPECT_EQ(toldOfAnAppend(), "ab");
  EXPECT_EQ(toldOfAnAppend(), "b");
}

TEST_F(ChangeListener, RemovedAndEndedMeanwhileIsNotToldAnyMore) {
  auto ending = std::make_unique<Listener>(told, 'e');
  model.addListener(a);
  model.addListener(*ending);
  model.addListener(c);
  a.action = [&] {
    if (ending == nullptr) return;
    model.removeListener(*ending);
    ending.reset();
  };
  EXPECT_EQ(toldOfAnAppend(), "ac");
  EXPECT_EQ(toldOfAnAppend(), "ac");
}

TEST_F(ChangeListener, BehindOneThatThrowsIsNotTold) {
  model.addListener(a);
  model.addListener(b);
  a.action = [] { throw 1; };
  EXPECT_THROW(owner->words.add("word"), int);
  EXPECT_EQ(told, "a");
  EXPECT_TRUE(owner->words.empty());
}

TEST_F(ChangeListener, MayChangeAnotherCollection) {
  const Box log = makeBox(model);
  model.addListener(a);
  a.action = [this, &log] {
    a.action = nullptr;
    log->words.add("told");
  };
  EXPECT_EQ(toldOfAnAppend(), "aa");
  EXPECT_EQ(log->words.size(), 1u);
  EXPECT_EQ(owner->words.size(), 1u);
}

TEST_F(ChangeListener, GetsARecordOfItsOwn) {
  struct Keeper final : kd::zero::ChangeListener {
    void modifying(const AbstractOwnedCollection&, std::unique_ptr<OCDChange> change) override {
      kept = std::move(change);
    }
    std::unique_ptr<OCDChange> kept;
  };
  Keeper first;
  Keeper second;
  model.addListener(first);
  model.addListener(second);
  owner->words.add("word");
  ASSERT_NE(first.kept, nullptr);
  EXPECT_NE(first.kept, second.kept);
}

}  // namespace
