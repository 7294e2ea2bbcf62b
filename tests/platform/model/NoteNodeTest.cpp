#include "platform/model/NoteNode.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "document/kdzero/TesseraDocument.hpp"

namespace {

using document::kdzero::Node;
using document::kdzero::TesseraDocument;
using example::NoteNode;

std::string textOf(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(NoteNode, IsANodeOfADocumentLikeAnyOther) {
  TesseraDocument document;
  NoteNode note = NoteNode::Builder(document.getModel()).createNoteNode({});
  note->setNote(u"remember");
  note->getChildrenMutable().add(NoteNode::Builder(document.getModel()).createNoteNode({}));
  note->setAnchorId(u"a");
  document.addChild(note);
  note = NoteNode();

  const Node found = document.getChildAt(0);
  EXPECT_EQ(found->getMetaClass().getQualifiedName(), u"example::NoteNode");
  ASSERT_TRUE(NoteNode::castFrom(found));
  EXPECT_EQ(NoteNode::castFrom(found)->getNote(), u"remember");
  EXPECT_EQ(found->getChildren()[0]->getParent(), found);
  EXPECT_TRUE(document.getModel().verify());
}

TEST(NoteNode, IsTheExampleOfTheModelPage) {
  const std::string source = QUENLITH_SOURCE_DIR;
  const std::string header = textOf(source + "/tests/platform/model/NoteNode.hpp");
  const std::string page = textOf(source + "/docs/model.md");
  ASSERT_FALSE(header.empty());
  EXPECT_NE(page.find("```cpp\n" + header + "```\n"), std::string::npos);
}

}  // namespace
