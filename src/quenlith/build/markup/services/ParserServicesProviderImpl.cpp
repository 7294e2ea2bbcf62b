#include "quenlith/build/markup/services/ParserServicesProviderImpl.hpp"

#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/ServiceObjects.h>
#include <cppmicroservices/ServiceReference.h>

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
using cppmicroservices::ServiceReference;
using quenlith::shared::logging::traceWith;

namespace {

template <class Service>
std::shared_ptr<Service> getService(BundleContext& context,
                                    const ServiceReference<Service>& reference) {
  if (!context) throw std::runtime_error("The bundle context is no longer valid");
  return context.GetServiceObjects(reference).GetService();
}

template <class Service>
std::vector<std::shared_ptr<Service>> findServices(const LDAPFilter& filter) {
  std::vector<std::shared_ptr<Service>> found;
  const auto framework = foundation::cppmicroservices::getFramework();
  if (framework == nullptr) return found;
  BundleContext context = framework->GetBundleContext();
  const auto references = context.GetServiceReferences<Service>(filter.ToString());
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
  const auto references = context.GetServiceReferences<Service>(filter.ToString());
  if (references.empty()) return nullptr;
  return getService(context, references.front());
}

}  // namespace

ParserServicesProviderImpl::ParserServicesProviderImpl() = default;
ParserServicesProviderImpl::~ParserServicesProviderImpl() = default;

std::vector<std::shared_ptr<LineContributorDataParser>>
ParserServicesProviderImpl::getLineContributorDataParsers() {
  if (lineContributorDataParsers.empty()) {
    auto found = findServices<LineContributorDataParser>(LDAPFilter());
    // Mostly there is none, and the next line looks again.
    if (found.empty()) return found;
    lineContributorDataParsers = std::move(found);
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
    // Without a default parser the list ends in a null: it is never empty, and so is looked up
    // once.
    found.push_back(findService<CodeElementParser>(LDAPFilter("(priority=default)")));
    codeElementParsers = std::move(found);
  }
  return codeElementParsers;
}

}  // namespace quenlith::build::markup::services
