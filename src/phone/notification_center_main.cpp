// The program kivo-notification-center. Started by the session bus, at the first call.
#include <atomic>
#include <csignal>
#include <iostream>
#include <stdexcept>
#include <string_view>

#include "phone/notification_center.h"
#include "platform/linux/process/process_start.h"
#include "platform/linux/user_notifications/notification_center_service.h"

namespace {

using kivo::linux_platform::NotificationCenterService;

constexpr std::string_view usage =
    "Usage: kivo-notification-center [--help | --version]\n"
    "The phone's notification center: keeps on the session bus who may notify and what waits to\n"
    "be shown, and has the desktop show it when it is due. Ends with the bus.\n";

std::atomic<NotificationCenterService*> serving = nullptr;

void stopServing(int) {
  if (NotificationCenterService* const service = serving) service->stop();
}

int serve() {
  NotificationCenterService service;
  serving = &service;
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) std::signal(signal, stopServing);

  // Only now that no other center can be at work on it.
  auto record = kivo::NotificationRecord::open();
  if (!record) throw std::runtime_error("the notifications on disk cannot be opened");
  kivo::NotificationCenter center(std::move(*record), [&service](const auto& content, auto done) {
    service.show(content, std::move(done));
  });
  service.serve(center, [&center] { return center.showDue(); });
  serving = nullptr;
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  kivo::linux_platform::startProcess();
  const std::string_view option = argc > 1 ? argv[1] : "";
  if (argc == 2 && option == "--help") {
    std::cout << usage;
    return 0;
  }
  if (argc == 2 && option == "--version") {
    std::cout << "kivo-notification-center " KIVO_VERSION "\n";
    return 0;
  }
  if (argc > 1) {
    std::cerr << usage;
    return 64;
  }
  try {
    return serve();
  } catch (const std::runtime_error& error) {
    std::cerr << "kivo-notification-center: " << error.what() << '\n';
    return 1;
  }
}
