// The program kivo-sms-watcher. Runs as a systemd service in the user's session.
#include "platform/linux/process/process_start.h"
#include "platform/linux/terminal/service_program.h"
#include "sms_watcher/watch_program.h"

int main(int argc, char** argv) {
  kivo::linux_platform::startProcess();
  return kivo::linux_platform::runService(
      {.name = "kivo-sms-watcher",
       .purpose =
           "Reads the text messages that this device receives from ModemManager, and hands\n"
           "those of the senders that you named to Kivo. Name them with: kivo-phone watch add "
           "SENDER\n",
       .serve = [] { return kivo::runSmsWatcher({}); }},
      argc, argv);
}
