#include "oracle/model/RealModel.hpp"

#include <algorithm>

#include "foundation/core/except/Exception.hpp"
#include "kd/zero/OCDChangeOfPrimitiveSequence.hpp"
#include "kd/zero/Verification.hpp"
#include "kd0/messages/CannotCastIncompatibleTypes.hpp"
#include "kd0/messages/ElementOfAnotherModel.hpp"
#include "kd0/messages/ElementWithinItself.hpp"

namespace quenlith::oracle {

namespace {

using failures::kdzero::ParserFailure;
using foundation::core::except::Exception;
using kd::zero::AbstractOwnedCollection;
using kd::zero::ModelElement;
using kd::zero::OCDChange;
using kd::zero::OCDChangeOfPrimitiveSequence;

template <class Message>
using Raised = Exception<Message, std::exception>;

Box::Impl::Boxes& listOf(const Box& box, BoxList list) {
  switch (list) {
    case BoxList::kPlain:
      return box->plain;
    case BoxList::kUnique:
      return box->unique;
    case BoxList::kOwned:
      return box->owned;
    case BoxList::kOwnedOnce:
      return box->ownedOnce;
    case BoxList::kKids:
      return box->kids;
    case BoxList::kPeers:
      return box->peers;
    default:
      return box->broken;
  }
}

std::int64_t indexOf(const OCDChange& change) {
  if (const auto* token = dynamic_cast<const OCDChangeOfPrimitiveSequence<Token>*>(&change)) {
    return token->getIndex();
  }
  return dynamic_cast<const OCDChangeOfPrimitiveSequence<ParserFailure>&>(change).getIndex();
}

template <class Call>
Attempt attempt(const AbstractOwnedCollection& collection, const Call& call) {
  const std::size_t before = collection.size();
  try {
    call();
  } catch (const Raised<kd0::messages::ElementOfAnotherModel>&) {
    return Attempt::kForeign;
  } catch (const Raised<kd0::messages::ElementWithinItself>&) {
    return Attempt::kCycle;
  } catch (const Raised<kd0::messages::CannotCastIncompatibleTypes>&) {
    return Attempt::kNoElement;
  }
  return collection.size() == before ? Attempt::kSkipped : Attempt::kAppended;
}

}  // namespace

RealModel::RealModel() : own(kd::zero::Model::create()), foreign(kd::zero::Model::create()) {
  own.addListener(*this);
  foreign.addListener(*this);
}

RealModel::~RealModel() {
  own.removeListener(*this);
  foreign.removeListener(*this);
  for (const Box& box : boxes) box->clearCollections();
}

void RealModel::addBox(bool isProxy, bool isForeign) {
  boxes.push_back(makeBox(isForeign ? foreign : own, isProxy));
}

Attempt RealModel::append(std::size_t owner, BoxList list, std::optional<std::size_t> element) {
  auto& boxList = listOf(boxes[owner], list);
  return attempt(boxList, [&] { boxList.add(element ? boxes[*element] : Box()); });
}

Attempt RealModel::appendToken(std::size_t owner, ValueList list, int token) {
  auto& values = list == ValueList::kTokens ? boxes[owner]->tokens : boxes[owner]->uniqueTokens;
  try {
    return attempt(values, [&] { values.add(Token{token}); });
  } catch (const ListenerFailure&) {
    return Attempt::kListenerThrew;
  }
}

Attempt RealModel::appendFailure(std::size_t owner, const ParserFailure& failure) {
  auto& values = boxes[owner]->failures;
  try {
    return attempt(values, [&] { values.add(failure); });
  } catch (const ListenerFailure&) {
    return Attempt::kListenerThrew;
  }
}

void RealModel::withoutCommit(std::size_t owner, BoxList list,
                              const std::function<void()>& appends) {
  const AbstractOwnedCollection::Operation operation(listOf(boxes[owner], list));
  appends();
}

std::uint64_t RealModel::operations() const {
  return own.getNumberOfOperations() + foreign.getNumberOfOperations();
}

const char* RealModel::findBrokenInvariant() const {
  const char* broken = findBrokenInvariant(own);
  return broken == nullptr ? findBrokenInvariant(foreign) : broken;
}

const char* RealModel::findBrokenInvariant(const kd::zero::Model& model) const {
  kd::zero::Verification verification(model.storage());
  verification.checkStorage();
  for (const Box& box : boxes) {
    if (box->getModel() == model) verification.checkTree(*box.get());
  }
  verification.finish();
  return verification.getBroken();
}

BoxRecord RealModel::read(std::size_t number) const {
  const Box& box = boxes[number];
  BoxRecord record;
  record.isProxy = box->isProxy();
  record.isForeign = box->getModel() == foreign;
  for (std::size_t list = 0; list < kBoxLists; ++list) {
    for (const Box& element : listOf(box, static_cast<BoxList>(list))) {
      record.lists[list].push_back(numberOf(element).value());
    }
  }
  record.container = numberOf(box->getContainer());
  record.head = numberOf(ModelElement::share(box->head));
  for (const Token& token : box->tokens) record.tokens.push_back(token.number);
  for (const Token& token : box->uniqueTokens) record.uniqueTokens.push_back(token.number);
  record.failures.assign(box->failures.begin(), box->failures.end());
  return record;
}

void RealModel::modifying(const AbstractOwnedCollection& collection,
                          std::unique_ptr<OCDChange> change) {
  ToldChange toldChange;
  toldChange.operation = static_cast<int>(change->getOperation());
  toldChange.index = indexOf(*change);
  toldChange.sizeBefore = collection.size();
  told.push_back(toldChange);
  if (listenerThrows) throw ListenerFailure();
}

std::optional<std::size_t> RealModel::numberOf(const ModelElement& element) const {
  for (std::size_t number = 0; number < boxes.size(); ++number) {
    if (static_cast<const ModelElement&>(boxes[number]) == element) return number;
  }
  return std::nullopt;
}

}  // namespace quenlith::oracle
