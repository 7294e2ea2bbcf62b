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
std::vector<ServiceReference<Service>> findReferences(BundleContext& context,
                                                      const LDAPFilter& filter) {
  return context.GetServiceReferences<Service>(filter.ToString());
}

template <class Service>
std::vector<std::shared_ptr<Service>> getServices(
    BundleContext& context, const std::vector<ServiceReference<Service>>& references) {
  std::vector<std::shared_ptr<Service>> found;
  found.reserve(references.size());
  for (const ServiceReference<Service>& reference : references) {
    if (auto service = getService(context, reference)) found.push_back(std::move(service));
  }
  return found;
}

template <class Service>
std::vector<std::shared_ptr<Service>> findServices(const LDAPFilter& filter) {
  const auto framework = foundation::cppmicroservices::getFramework();
  if (framework == nullptr) return {};
  BundleContext context = framework->GetBundleContext();
  return getServices(context, findReferences<Service>(context, filter));
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
  if (lineContributorDataParsers.empty()) lookForContributors();
  return lineContributorDataParsers;
}

void ParserServicesProviderImpl::lookForContributors() {
  if (noContributors.isConfirmed()) return;
  const auto framework =
      noContributors.begin(us_service_interface_iid<LineContributorDataParser>());
  if (framework == nullptr) return;
  BundleContext context = framework->GetBundleContext();
  const auto references = findReferences<LineContributorDataParser>(context, LDAPFilter());
  if (references.empty()) {
    noContributors.confirm();
    return;
  }
  lineContributorDataParsers = getServices(context, references);
  // One that could not be made may be made next time, and nobody would tell.
  if (!lineContributorDataParsers.empty()) noContributors.end();
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
