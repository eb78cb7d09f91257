// The program kivo-sms-watcher from its start to its end. Decides nothing about messages.
#pragma once

#include <chrono>

#include "sms_watcher/sms_watcher.h"

namespace kivo {

/// How long the program waits for what.
struct WatchLimits {
  /// How often it looks whether the settings were changed or somebody signed in, when nothing else
  /// wakes it.
  std::chrono::milliseconds look = std::chrono::minutes(1);
  /// For an answer of ModemManager.
  std::chrono::milliseconds modemCall = std::chrono::seconds(5);
  /// For an intent: its own exchange and those of three queued texts take 15 s each at most, the
  /// store up to 10 s, and the bus has to start the service first.
  std::chrono::milliseconds perform = std::chrono::minutes(3);
  /// For the intent under way when the program is told to end.
  std::chrono::milliseconds end = std::chrono::seconds(3);
  SmsWatcher::Pauses pauses = {};
};

/// Hands on messages until SIGTERM, SIGINT or SIGHUP, and yields 0 then; yields 1, after one line
/// on standard error, when a bus or the record of handled messages is not there, when another
/// program is the watcher, or when a bus goes away.
int runSmsWatcher(const WatchLimits& limits);

}  // namespace kivo
