#include "quenlith/build/markup/services/AbsenceWatch.hpp"

#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Constants.h>
#include <cppmicroservices/ServiceEvent.h>

#include <exception>
#include <utility>

namespace quenlith::build::markup::services {

using cppmicroservices::Framework;
using cppmicroservices::ServiceEvent;

AbsenceWatch::~AbsenceWatch() {
  end();
}

std::shared_ptr<Framework> AbsenceWatch::begin(const std::string& interfaceId) {
  end();
  changesSeen = foundation::cppmicroservices::frameworkChanges();
  auto framework = foundation::cppmicroservices::getFramework();
  if (framework == nullptr) return nullptr;
  const auto told = std::make_shared<News>(false);
  const auto tell = [told](News*) noexcept { told->store(true, std::memory_order_release); };
  // When the framework lets go of the listener, that is news too.
  const auto listener = [untilDropped =
                             std::shared_ptr<News>(told.get(), tell)](const ServiceEvent&) {
    untilDropped->store(true, std::memory_order_release);
  };
  token = framework->GetBundleContext().AddServiceListener(
      listener, "(" + cppmicroservices::Constants::OBJECTCLASS + "=" + interfaceId + ")");
  watched = framework;
  news = told;
  return framework;
}

void AbsenceWatch::end() noexcept {
  confirmed = false;
  news = nullptr;
  const auto framework = watched.lock();
  watched.reset();
  if (framework == nullptr) return;
  try {
    framework->GetBundleContext().RemoveListener(std::move(token));
  } catch (const std::exception&) {
    // It stopped, and has dropped its listeners itself.
  }
}

}  // namespace quenlith::build::markup::services
