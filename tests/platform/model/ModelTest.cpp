#include "kd/zero/Model.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "platform/model/Box.hpp"
#include "support/nilUuid.hpp"

namespace {

using document::kdzero::LineNode;
using document::kdzero::Node;
using document::kdzero::TesseraDocument;
using kd::zero::Model;
using quenlith::test::Box;
using quenlith::test::kNil;
using quenlith::test::liveBoxes;
using quenlith::test::makeBox;

TEST(Model, IsEmptyAtFirst) {
  const Model model;
  EXPECT_FALSE(model);
  EXPECT_EQ(model, Model());
}

TEST(Model, RefersToTheStorageOfItsElements) {
  const Model model = Model::create();
  ASSERT_EQ(model.get(), &model.storage());
  EXPECT_EQ(Model::share(*model.get()), model);
  const Box box = makeBox(model);
  EXPECT_TRUE(model->hasInChunk(box.get(), sizeof(Box::Impl)));
  EXPECT_FALSE(Model::create()->hasInChunk(box.get(), sizeof(Box::Impl)));
  EXPECT_EQ(Model().get(), nullptr);
}

TEST(Model, IsEqualToItsCopiesOnly) {
  const Model model = Model::create();
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is meant
  const Model copy(model);
  EXPECT_EQ(model, copy);
  EXPECT_NE(model, Model::create());
  EXPECT_TRUE(model);
}

TEST(Model, AMoveLeavesTheSourceEmpty) {
  Model model = Model::create();
  Model moved(std::move(model));
  // NOLINTNEXTLINE(bugprone-use-after-move): what a move leaves is looked at
  EXPECT_FALSE(model);
  model = std::move(moved);
  EXPECT_TRUE(model);
  // NOLINTNEXTLINE(bugprone-use-after-move): what a move leaves is looked at
  EXPECT_FALSE(moved);
}

TEST(Model, SelfAssignmentAndSelfSwapChangeNothing) {
  Model model = Model::create();
  const Box box = makeBox(model);
  Model& same = model;
  model = same;
  std::swap(model, same);
  EXPECT_EQ(model, box->getModel());
}

TEST(Model, LivesAsLongAsAnElementOfIt) {
  Box box = makeBox(Model::create());
  box->parts.add(makeBox(box->getModel()));
  EXPECT_EQ(liveBoxes(), 2);
  box = Box();
  EXPECT_EQ(liveBoxes(), 0);
}

TEST(Model, NodesOutliveTheirDocument) {
  auto document = std::make_unique<TesseraDocument>();
  const Node line = LineNode::Builder(document->getModel()).createLineNode(kNil);
  line->setAnchorId(u"a");
  document->addChild(line);
  document.reset();
  EXPECT_EQ(line->getAnchorId(), u"a");
  EXPECT_FALSE(line->getContainer());
  EXPECT_FALSE(line->getParent());
}

TEST(Model, ALineOutlivesTheDocumentThatItsHandleWasReadFrom) {
  Node line;
  {
    TesseraDocument document;
    document.addChild(LineNode::Builder(document.getModel()).createLineNode(kNil));
    line = document.getChildAt(0);
  }
  line->getChildrenMutable().add(LineNode::Builder(line->getModel()).createLineNode(kNil));
  EXPECT_EQ(line->getChildren().size(), 1u);
}

TEST(Model, ManyModelsLiveSideBySide) {
  constexpr std::size_t kModels = 500;
  std::vector<Model> models;
  std::vector<Box> boxes;
  for (std::size_t i = 0; i < kModels; ++i) {
    models.push_back(Model::create());
    boxes.push_back(makeBox(models.back()));
  }
  for (std::size_t i = 0; i < kModels; ++i) EXPECT_EQ(boxes[i]->getModel(), models[i]);
  models.clear();
  EXPECT_EQ(liveBoxes(), static_cast<int>(kModels));
  boxes.clear();
  EXPECT_EQ(liveBoxes(), 0);
}

TEST(Model, CountsTheOperationsOnItsCollections) {
  const Model model = Model::create();
  const Box box = makeBox(model);
  EXPECT_EQ(model.getNumberOfOperations(), 0u);
  box->parts.add(makeBox(model));
  EXPECT_EQ(model.getNumberOfOperations(), 1u);
  box->words.add("one");
  EXPECT_EQ(model.getNumberOfOperations(), 2u);
}

}  // namespace
