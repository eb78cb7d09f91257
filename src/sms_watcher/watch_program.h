// The main loop of kivo-sms-watcher. SmsWatcher decides about messages.
#pragma once

#include <chrono>

#include "sms_watcher/sms_watcher.h"

namespace kivo {

/// The bus name of the watcher that runs.
inline constexpr const char* watcherBusName = "app.kivo.SmsWatcher";

/// The program's timeouts and intervals.
struct WatchLimits {
  /// How often to check for changed settings and a sign-in when nothing else wakes it.
  std::chrono::milliseconds look = std::chrono::minutes(1);
  /// Timeout of a call to ModemManager.
  std::chrono::milliseconds modemCall = std::chrono::seconds(5);
  /// Timeout of an intent: its own exchange and those of three queued texts take up to 15 s each,
  /// the store up to 10 s, and the bus may have to start the service first.
  std::chrono::milliseconds perform = std::chrono::minutes(3);
  /// Timeout of the intent in progress when the program is stopped.
  std::chrono::milliseconds end = std::chrono::seconds(3);
  SmsWatcher::Pauses pauses = {};
};

/// Hands on messages until SIGTERM, SIGINT or SIGHUP and returns 0. Returns 1, after one line on
/// standard error, when a bus or the record of handled messages cannot be opened, when another
/// watcher runs, or when a bus connection is lost.
int runSmsWatcher(const WatchLimits& limits);

}  // namespace kivo
