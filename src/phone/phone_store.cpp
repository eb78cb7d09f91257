#include "phone/phone_store.h"

#include <optional>
#include <utility>

#include "platform/linux/terminal/command_failure.h"

namespace kivo {

SharedStore openStore() {
  auto store = SharedStore::open(appGroup);
  if (!store) throw linux_platform::ReportedFailure();
  return *std::move(store);
}

platform::UserDefaults openDefaults() {
  auto defaults = platform::UserDefaults::initWithSuiteName(appGroup);
  if (!defaults) throw linux_platform::ReportedFailure();
  return *std::move(defaults);
}

}  // namespace kivo
