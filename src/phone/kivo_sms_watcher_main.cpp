// The program kivo-sms-watcher. Started with the person's session, as a service.
#include <iostream>
#include <string_view>

#include "phone/sms_watcher/watch_program.h"
#include "platform/linux/process/process_start.h"

namespace {

constexpr std::string_view usage =
    "Usage: kivo-sms-watcher [--help | --version]\n"
    "Hears from ModemManager of the text messages that this device receives, and hands those of\n"
    "the senders that you named to Kivo. Name them with: kivo-phone watch add SENDER\n";

}  // namespace

int main(int argc, char** argv) {
  kivo::linux_platform::startProcess();
  const std::string_view option = argc > 1 ? argv[1] : "";
  if (argc == 2 && option == "--help") {
    std::cout << usage;
    return 0;
  }
  if (argc == 2 && option == "--version") {
    std::cout << "kivo-sms-watcher " KIVO_VERSION "\n";
    return 0;
  }
  if (argc > 1) {
    std::cerr << usage;
    return 64;
  }
  return kivo::runSmsWatcher({});
}
