#include "platform/linux/process/sdbus_signals.h"

#include <utility>

#include <sdbus-c++/sdbus-c++.h>

#include "platform/linux/process/bus_names.h"

namespace kivo::linux_platform {
namespace {

std::string ruleOf(const BusSignal& signal) {
  std::string rule = std::string("type='signal',sender='") + signal.service + "',interface='" +
                     signal.interface + "',member='" + signal.member + "'";
  if (signal.argument != nullptr) rule += std::string(",arg0='") + signal.argument + "'";
  return rule;
}

}  // namespace

void onSignal(sdbus::IConnection& connection, const BusSignal& signal,
              std::function<void(sdbus::Message&)> hear) {
  connection.addMatch(
      ruleOf(signal),
      [hear = std::move(hear)](sdbus::Message& message) {
        try {
          hear(message);
        } catch (const sdbus::Error&) {
          // A signal of another shape says nothing to us.
        }
      },
      sdbus::floating_slot);
}

void onOwnerChange(sdbus::IConnection& connection, const char* service,
                   std::function<void(const std::string& owner)> hear) {
  const BusObject& bus = bus_names::bus;
  onSignal(connection,
           {.service = bus.service,
            .interface = bus.interface,
            .member = "NameOwnerChanged",
            .argument = service},
           [service = bus.service, hear = std::move(hear)](sdbus::Message& change) {
             if (change.getSender() != service) return;
             std::string name;
             std::string before;
             std::string after;
             change >> name >> before >> after;
             hear(after);
           });
}

}  // namespace kivo::linux_platform
