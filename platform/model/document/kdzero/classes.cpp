#include "document/kdzero/DocumentRoot.hpp"
#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/Properties.hpp"

namespace document::kdzero {

using kd::zero::ElementMaker;
using kd::zero::meta::Class;

const Class& DocumentRoot::Impl::classOf() noexcept {
  static const Class metaClass =
      ElementMaker::describe<Impl>(u"document::kdzero::TesseraDocument", Class::modelElement());
  return metaClass;
}

const Class& LineNode::Impl::classOf() noexcept {
  static const Class metaClass =
      ElementMaker::describe<Impl>(u"document::kdzero::LineNode", Node::Impl::classOf());
  return metaClass;
}

const Class& LiveAppLineNode::Impl::classOf() noexcept {
  static const Class metaClass =
      ElementMaker::describe<Impl>(u"document::kdzero::LiveAppLineNode", Node::Impl::classOf());
  return metaClass;
}

const Class& LiveAppIntegratedInlineNode::Impl::classOf() noexcept {
  static const Class metaClass = ElementMaker::describe<Impl>(
      u"document::kdzero::LiveAppIntegratedInlineNode", Node::Impl::classOf());
  return metaClass;
}

const Class& PlainTextNode::Impl::classOf() noexcept {
  static const Class metaClass =
      ElementMaker::describe<Impl>(u"document::kdzero::PlainTextNode", TextNode::Impl::classOf());
  return metaClass;
}

DocumentRoot::Impl::Impl()
    : kd::zero::ModelElement::Impl(classOf()), children(*this, properties::topLevelNodes()) {}

}  // namespace document::kdzero
