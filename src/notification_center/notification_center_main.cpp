// The program kivo-notification-center. The session bus starts it at the first call.
#include <optional>

#include "notification_center/notification_center.h"
#include "notification_center/notification_center_service.h"
#include "platform/linux/foundation/failure.h"
#include "platform/linux/process/process_start.h"
#include "platform/linux/process/stop_signals.h"
#include "platform/linux/terminal/service_program.h"

namespace {

int serve() {
  std::optional<kivo::NotificationCenter> center;  // outlives the service
  kivo::NotificationCenterService service;
  const kivo::linux_platform::StopSignals signals([&service] { service.stop(); });

  // Opened only after the bus name is taken, so that no other center uses it.
  auto record = kivo::NotificationRecord::open();
  if (!record) throw kivo::linux_platform::Failure("the stored notifications cannot be opened");
  center.emplace(std::move(*record), [&service](const auto& content, auto done) {
    service.show(content, std::move(done));
  });
  service.serve(*center);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  kivo::linux_platform::startProcess();
  return kivo::linux_platform::runService(
      {.name = "kivo-notification-center",
       .purpose =
           "The phone's notification center on the session bus: keeps permissions and waiting\n"
           "notifications, and shows each on the desktop when it is due. Ends with the bus.\n",
       .serve = serve},
      argc, argv);
}
