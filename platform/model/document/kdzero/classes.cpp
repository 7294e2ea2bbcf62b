#include "document/kdzero/DocumentRoot.hpp"
#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/Properties.hpp"

namespace document::kdzero {

using kd::zero::ElementMaker;
using kd::zero::meta::Class;

const kd::zero::meta::Class DocumentRoot::Impl::kMetaClass =
    ElementMaker::describe<Impl>(u"document::kdzero::TesseraDocument", Class::modelElement());

const kd::zero::meta::Class LineNode::Impl::kMetaClass =
    ElementMaker::describe<Impl>(kClassKey, u"document::kdzero::LineNode", Node::Impl::classOf());

const kd::zero::meta::Class LiveAppLineNode::Impl::kMetaClass =
    ElementMaker::describe<Impl>(u"document::kdzero::LiveAppLineNode", Node::Impl::classOf());

const kd::zero::meta::Class LiveAppIntegratedInlineNode::Impl::kMetaClass =
    ElementMaker::describe<Impl>(u"document::kdzero::LiveAppIntegratedInlineNode",
                                 Node::Impl::classOf());

const kd::zero::meta::Class PlainTextNode::Impl::kMetaClass = ElementMaker::describe<Impl>(
    kClassKey, u"document::kdzero::PlainTextNode", TextNode::Impl::classOf());

DocumentRoot::Impl::Impl()
    : kd::zero::ModelElement::Impl(classOf()), children(*this, properties::kTopLevelNodes) {}

}  // namespace document::kdzero
