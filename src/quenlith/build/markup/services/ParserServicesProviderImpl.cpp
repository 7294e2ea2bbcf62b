#include "quenlith/build/markup/services/ParserServicesProviderImpl.hpp"

#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/ServiceObjects.h>
#include <cppmicroservices/ServiceReference.h>

#include <optional>
#include <ostream>
#include <stdexcept>
#include <utility>

#include "foundation/cppmicroservices/getFramework.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::build::markup::services {

using code::CodeElementParser;
using contributordata::LineContributorDataParser;
using cppmicroservices::BundleContext;
using cppmicroservices::LDAPFilter;
using cppmicroservices::ServiceObjects;
using cppmicroservices::ServiceReference;
using quenlith::shared::logging::traceWith;

namespace {

void requireValid(const BundleContext& context) {
  if (!context) throw std::runtime_error("The bundle context is no longer valid");
}

/// Returns nothing when the service was unregistered after `reference` was found.
template <class Service>
std::optional<ServiceObjects<Service>> getServiceObjects(
    BundleContext& context, const ServiceReference<Service>& reference) {
  try {
    return context.GetServiceObjects(reference);
  } catch (const std::invalid_argument&) {
    // A framework that stops unregisters its services, too.
    requireValid(context);
    return std::nullopt;
  }
}

template <class Service>
std::shared_ptr<Service> getService(BundleContext& context,
                                    const ServiceReference<Service>& reference) {
  requireValid(context);
  const auto objects = getServiceObjects(context, reference);
  return objects ? objects->GetService() : nullptr;
}

template <class Service>
std::vector<ServiceReference<Service>> findReferences(BundleContext& context,
                                                      const LDAPFilter& filter) {
  return context.GetServiceReferences<Service>(filter.ToString());
}

template <class Service>
std::vector<std::shared_ptr<Service>> findServices(const LDAPFilter& filter) {
  const auto framework = foundation::cppmicroservices::getFramework();
  if (framework == nullptr) return {};
  BundleContext context = framework->GetBundleContext();
  const auto references = findReferences<Service>(context, filter);
  std::vector<std::shared_ptr<Service>> found;
  found.reserve(references.size());
  for (const ServiceReference<Service>& reference : references) {
    if (auto service = getService(context, reference)) found.push_back(std::move(service));
  }
  return found;
}

template <class Service>
std::shared_ptr<Service> findService(const LDAPFilter& filter) {
  const auto framework = foundation::cppmicroservices::getFramework();
  if (framework == nullptr) return nullptr;
  BundleContext context = framework->GetBundleContext();
  const auto references = findReferences<Service>(context, filter);
  if (references.empty()) return nullptr;
  return getService(context, references.front());
}

}  // namespace

ParserServicesProviderImpl::ParserServicesProviderImpl() = default;
ParserServicesProviderImpl::~ParserServicesProviderImpl() = default;

std::vector<std::shared_ptr<LineContributorDataParser>>
ParserServicesProviderImpl::getLineContributorDataParsers() {
  // An empty list is not remembered: each call looks again until there is a parser.
  if (lineContributorDataParsers.empty()) {
    lineContributorDataParsers = findServices<LineContributorDataParser>(LDAPFilter());
  }
  return lineContributorDataParsers;
}

std::vector<std::shared_ptr<CodeElementParser>>
ParserServicesProviderImpl::getCodeElementParsers() {
  if (codeElementParsers.empty()) {
    auto found = findServices<CodeElementParser>(LDAPFilter("(!(priority=default))"));
    traceWith([&found](std::ostream& message) {
      message << "Found " << found.size() << " non default code element parsers";
    });
    // The list ends in null when no default parser is registered. So it is never empty, and there
    // is only one lookup.
    found.push_back(findService<CodeElementParser>(LDAPFilter("(priority=default)")));
    codeElementParsers = std::move(found);
  }
  return codeElementParsers;
}

}  // namespace quenlith::build::markup::services
