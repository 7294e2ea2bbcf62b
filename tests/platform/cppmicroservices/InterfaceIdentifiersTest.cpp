#include "platform/cppmicroservices/HostFramework.hpp"

namespace embedded_framework {
namespace {

using namespace cppmicroservices;

class InterfaceIdentifiers : public HostFramework {
 protected:
  ServiceRegistrationU add(const std::string& interfaceId) {
    return context.RegisterService(std::make_shared<const InterfaceMap>(
        InterfaceMap{{interfaceId, std::make_shared<Hello>(interfaceId)}}));
  }

  std::size_t count(const std::string& interfaceId, const std::string& filter = "") {
    return context.GetServiceReferences(interfaceId, filter).size();
  }
};

TEST_F(InterfaceIdentifiers, OfAnyLengthFindTheirService) {
  const std::string characters = "abcdefghijklmnopqrstuvwxyz";
  for (std::size_t length = 1; length <= characters.size(); ++length) {
    const std::string interfaceId = characters.substr(0, length);
    EXPECT_EQ(count(interfaceId), 0U) << interfaceId;
    auto registration = add(interfaceId);
    EXPECT_EQ(count(interfaceId), 1U) << interfaceId;
    registration.Unregister();
    EXPECT_EQ(count(interfaceId), 0U) << interfaceId;
  }
}

TEST_F(InterfaceIdentifiers, ThatAreSimilarFindDifferentServices) {
  const std::string ending = "::of::a::service::with::a::long::name";
  auto one = add("one" + ending);
  EXPECT_EQ(count("two" + ending), 0U);
  auto two = add("two" + ending);
  EXPECT_EQ(count("two" + ending), 1U);
  one.Unregister();
  EXPECT_EQ(count("one" + ending), 0U);
  EXPECT_EQ(count("two" + ending), 1U);
}

TEST_F(InterfaceIdentifiers, ThatAreEmptyFindEveryService) {
  const std::size_t before = count("");
  auto a = add("a");
  auto b = add("b");
  EXPECT_EQ(count(""), before + 2);
  EXPECT_EQ(count("", "(objectclass=b)"), 1U);
}

}  // namespace
}  // namespace embedded_framework
