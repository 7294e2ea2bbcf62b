#include "cppmicroservices/BundleEvent.h"
#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/ServiceEvent.h"

namespace cppmicroservices {

ServiceEvent::ServiceEvent() = default;
ServiceEvent::ServiceEvent(Type kind, const ServiceReferenceBase& service)
    : type(kind), reference(service) {}
ServiceEvent::operator bool() const {
  return type != Type{};
}
ServiceEvent::Type ServiceEvent::GetType() const {
  return type;
}
ServiceReferenceU ServiceEvent::GetServiceReference() const {
  return reference;
}

BundleEvent::BundleEvent() = default;
BundleEvent::BundleEvent(Type kind, const Bundle& changed) : BundleEvent(kind, changed, changed) {}
BundleEvent::BundleEvent(Type kind, const Bundle& changed, const Bundle& cause)
    : type(kind), bundle(changed), origin(cause) {}
BundleEvent::operator bool() const {
  return type != Type{};
}
BundleEvent::Type BundleEvent::GetType() const {
  return type;
}
Bundle BundleEvent::GetBundle() const {
  return bundle;
}
Bundle BundleEvent::GetOrigin() const {
  return origin;
}

FrameworkEvent::FrameworkEvent() = default;
FrameworkEvent::FrameworkEvent(Type kind, const Bundle& source, const std::string& text,
                               std::exception_ptr cause)
    : type(kind), bundle(source), message(text), exception(std::move(cause)) {}
FrameworkEvent::operator bool() const {
  return type != Type{};
}
FrameworkEvent::Type FrameworkEvent::GetType() const {
  return type;
}
Bundle FrameworkEvent::GetBundle() const {
  return bundle;
}
std::string FrameworkEvent::GetMessage() const {
  return message;
}
std::exception_ptr FrameworkEvent::GetThrowable() const {
  return exception;
}

}  // namespace cppmicroservices
