#include "oracle/model/ModelTwin.hpp"

#include <algorithm>
#include <cmath>

namespace quenlith::oracle {

namespace {

using failures::kdzero::ParserFailure;
using foundation::json::Value;

bool isUnique(BoxList list) {
  return list != BoxList::kPlain && list != BoxList::kOwned;
}
bool contains(BoxList list) {
  return list == BoxList::kOwned || list == BoxList::kOwnedOnce || list == BoxList::kKids;
}

template <class List>
bool has(const List& list, std::size_t element) {
  return std::find(list.begin(), list.end(), element) != list.end();
}

std::size_t indexOf(BoxList list) {
  return static_cast<std::size_t>(list);
}

bool sameValue(const Value& left, const Value& right);

template <class T>
bool sameNumber(T left, T right) {
  return left == right || (std::isnan(left) && std::isnan(right));
}

bool sameArray(const foundation::json::Array& left, const foundation::json::Array& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), sameValue);
}

bool sameObject(const foundation::json::Object& left, const foundation::json::Object& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](const auto& a, const auto& b) {
                      return a.first == b.first && sameValue(a.second, b.second);
                    });
}

bool sameValue(const Value& left, const Value& right) {
  using namespace foundation::json;
  if (left.kind() != right.kind()) return false;
  switch (left.kind()) {
    case Kind::kBoolean:
      return left.get<bool>() == right.get<bool>();
    case Kind::kDouble:
      return sameNumber(left.get<double>(), right.get<double>());
    case Kind::kString:
      return left.get<std::string>() == right.get<std::string>();
    case Kind::kArray:
      return sameArray(left.get<Array>(), right.get<Array>());
    case Kind::kObject:
      return sameObject(left.get<Object>(), right.get<Object>());
    case Kind::kFloat:
      return sameNumber(left.get<float>(), right.get<float>());
    case Kind::kSigned:
      return left.get<std::int64_t>() == right.get<std::int64_t>();
    case Kind::kUnsigned:
      return left.get<std::uint64_t>() == right.get<std::uint64_t>();
    default:
      return true;
  }
}

}  // namespace

bool sameFailure(const ParserFailure& left, const ParserFailure& right) {
  const auto& a = left.getMarkerInfo();
  const auto& b = right.getMarkerInfo();
  return left.getFailureId() == right.getFailureId() && a.getMarkerId() == b.getMarkerId() &&
         a.getFeatureId() == b.getFeatureId() && a.getSubFeatureId() == b.getSubFeatureId() &&
         sameObject(left.getFailureData(), right.getFailureData());
}

std::size_t ModelTwin::addBox(bool isProxy, bool isForeign) {
  BoxRecord box;
  box.isProxy = isProxy;
  box.isForeign = isForeign;
  boxes.push_back(box);
  return boxes.size() - 1;
}

Attempt ModelTwin::append(std::size_t owner, BoxList list, std::optional<std::size_t> element) {
  if (!element) return Attempt::kSkipped;
  BoxRecord& box = boxes[*element];
  if (box.isForeign != boxes[owner].isForeign) return Attempt::kForeign;
  if (isUnique(list) && !box.isProxy) {
    if (list == BoxList::kBroken) return Attempt::kNoElement;
    if (isIn(owner, list, *element)) return Attempt::kSkipped;
  }
  if (contains(list) && !box.isProxy && isWithin(owner, *element)) return Attempt::kCycle;
  ++operations;
  boxes[owner].lists[indexOf(list)].push_back(*element);
  if (box.isProxy) return Attempt::kAppended;
  if (list == BoxList::kPeers) box.head = owner;
  if (contains(list)) setContainer(owner, list, *element);
  return Attempt::kAppended;
}

Attempt ModelTwin::appendToken(std::size_t owner, ValueList list, int token) {
  const bool unique = list == ValueList::kUniqueTokens;
  auto& values = unique ? boxes[owner].uniqueTokens : boxes[owner].tokens;
  if (unique && std::find(values.begin(), values.end(), token) != values.end()) {
    return Attempt::kSkipped;
  }
  const Attempt attempt = announce(values.size());
  if (attempt == Attempt::kAppended) values.push_back(token);
  return attempt;
}

Attempt ModelTwin::appendFailure(std::size_t owner, const ParserFailure& failure) {
  auto& values = boxes[owner].failures;
  for (const ParserFailure& present : values) {
    if (sameFailure(present, failure)) return Attempt::kSkipped;
  }
  const Attempt attempt = announce(values.size());
  if (attempt == Attempt::kAppended) values.push_back(failure);
  return attempt;
}

void ModelTwin::withoutCommit(std::size_t owner, BoxList list,
                              const std::function<void()>& appends) {
  ++operations;
  const std::size_t before = boxes[owner].lists[indexOf(list)].size();
  appends();
  auto& elements = boxes[owner].lists[indexOf(list)];
  for (std::size_t i = before; i < elements.size(); ++i) {
    BoxRecord& box = boxes[elements[i]];
    if (box.container == owner && box.containerList == list) box.container.reset();
  }
  elements.resize(before);
}

bool ModelTwin::isIn(std::size_t owner, BoxList list, std::size_t element) const {
  if (list == BoxList::kPeers) return boxes[element].head == owner;
  // The opposite of `kids` is the container, through whichever collection.
  if (list == BoxList::kKids) return boxes[element].container == owner;
  return has(boxes[owner].lists[indexOf(list)], element);
}

bool ModelTwin::isWithin(std::size_t element, std::size_t root) const {
  for (std::optional<std::size_t> at = element; at; at = boxes[*at].container) {
    if (*at == root) return true;
  }
  return false;
}

void ModelTwin::setContainer(std::size_t owner, BoxList list, std::size_t element) {
  BoxRecord& box = boxes[element];
  const bool same = box.container == owner && box.containerList == list;
  if (box.container && !same) {
    auto& old = boxes[*box.container].lists[indexOf(box.containerList)];
    old.erase(std::remove(old.begin(), old.end(), element), old.end());
  }
  box.container = owner;
  box.containerList = list;
}

Attempt ModelTwin::announce(std::size_t size) {
  ++operations;
  told.push_back({0, static_cast<std::int64_t>(size), size});
  return listenerThrows ? Attempt::kListenerThrew : Attempt::kAppended;
}

}  // namespace quenlith::oracle
