#include "phone/watcher_status.h"

#include <chrono>
#include <map>
#include <sstream>
#include <system_error>

#include "platform/linux/bus/bus_call.h"
#include "platform/linux/bus/bus_message.h"
#include "platform/linux/bus/session_bus.h"
#include "platform/linux/foundation/failure.h"
#include "platform/linux/process/child_process.h"
#include "sms_watcher/senders_file.h"
#include "sms_watcher/watch_program.h"

namespace kivo {
namespace {

constexpr std::chrono::seconds timeout(1);

bool watcherRuns() {
  const auto call = linux_platform::methodCall(
      linux_platform::messageBus, "NameHasOwner",
      [](linux_platform::BusWriter& arguments) { arguments.text(watcherBusName); });
  const auto reply = linux_platform::SessionBus(timeout).callAndWait(call);
  return reply && !linux_platform::errorOf(reply) &&
         linux_platform::BusReader(reply).flag().value_or(false);
}

// The properties of the watcher's unit by their names; empty without a service manager.
std::map<std::string, std::string> unitProperties() {
  std::map<std::string, std::string> properties;
  try {
    const auto shown = linux_platform::runProgram(
        {.program = "systemctl",
         .arguments = {"--user", "show", "--property=LoadState,ActiveState,SubState,NRestarts",
                       "kivo-sms-watcher.service"}},
        timeout);
    std::istringstream lines(shown.status == 0 ? shown.output : "");
    for (std::string line; std::getline(lines, line);) {
      const std::size_t sign = line.find('=');
      if (sign != std::string::npos) properties[line.substr(0, sign)] = line.substr(sign + 1);
    }
  } catch (const std::system_error&) {  // there is no systemctl
  }
  return properties;
}

// Why the watcher, which has no bus name, does not run, and what to do.
std::string whyItDoesNotRun() {
  auto unit = unitProperties();
  if (unit.empty() || unit["LoadState"] == "not-found") {
    return "kivo-sms-watcher does not run; start it in your session";
  }
  if (unit["LoadState"] == "masked") return "kivo-sms-watcher is masked, so it does not run";
  // Between two attempts the manager waits, and during one the unit is active for a moment.
  const bool restarts = !unit["NRestarts"].empty() && unit["NRestarts"] != "0";
  const bool isUp = unit["ActiveState"] == "active" || unit["ActiveState"] == "activating";
  if (unit["ActiveState"] == "failed" || (isUp && restarts)) {
    return "kivo-sms-watcher keeps failing; journalctl --user -u kivo-sms-watcher says why";
  }
  return "kivo-sms-watcher does not run; systemctl --user start kivo-sms-watcher starts it";
}

}  // namespace

std::string WatcherStatus::sentence() {
  std::size_t count = 0;
  try {
    count = SendersFile::readValid().senders.size();
  } catch (const linux_platform::Failure& failure) {
    return std::string("unknown, so no message is handed on: ") + failure.what();
  }
  if (count == 0) return "none for kivo-sms-watcher; kivo-phone watch add names one";
  if (watcherRuns()) return std::to_string(count) + ", watched by kivo-sms-watcher";
  return std::to_string(count) + ", but " + whyItDoesNotRun();
}

}  // namespace kivo
