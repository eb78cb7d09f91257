// The SMS watcher with short timeouts for tests. Arguments: the timeouts of an intent and of
// ModemManager, in milliseconds.
#include <chrono>
#include <string>

#include "platform/linux/process/process_start.h"
#include "sms_watcher/watch_program.h"

int main(int, char** argv) {
  using namespace std::chrono_literals;
  kivo::linux_platform::startProcess();
  return kivo::runSmsWatcher({.look = 100ms,
                              .modemCall = std::chrono::milliseconds(std::stoi(argv[2])),
                              .perform = std::chrono::milliseconds(std::stoi(argv[1])),
                              .end = 3s,
                              .pauses = {.settle = 20ms, .first = 20ms, .longest = 200ms}});
}
