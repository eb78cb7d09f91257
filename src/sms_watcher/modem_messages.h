// Hears of the text messages on this device's modems, from ModemManager on the system bus. Reads
// none before it is asked to, and never changes or deletes one.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "sms_watcher/modem_message.h"

namespace kivo {

/// Used on one thread, except where said.
class ModemMessages {
 public:
  /// What one look at the modems brought.
  struct Reading {
    /// Received texts that are complete; what is no such text, and what cannot be understood, is
    /// left out.
    std::vector<ModemMessage> messages;
    /// Whether these are all that the modems hold.
    bool everything = false;
  };

  /// Connects to the system bus. A call of ModemManager fails after `timeout`; after a call that
  /// failed, the modems are looked at again after `pause`, then twice as long each time, five
  /// minutes at most. ModemManager need not be there, and is not started. Throws std::runtime_error
  /// with one line when there is no system bus.
  ModemMessages(std::chrono::milliseconds timeout, std::chrono::milliseconds pause);
  ~ModemMessages();
  ModemMessages(const ModemMessages&) = delete;
  ModemMessages& operator=(const ModemMessages&) = delete;

  /// Hears of messages until `stop`. `beforeWaiting` is called before each wait and yields how long
  /// that may last, none for ever. False when the bus is gone.
  bool serve(const std::function<std::optional<std::chrono::milliseconds>()>& beforeWaiting);

  /// How long until there is something to read; none while nothing is known of, or no ModemManager
  /// is there.
  [[nodiscard]] std::optional<std::chrono::milliseconds> untilReading() const;

  /// Reads, within `serve`, what has come since the last reading. Waits for ModemManager's answers,
  /// and for `timeout` at most when it does not answer.
  Reading read();

  /// Has the next reading read everything.
  void lookAtAll();

  /// Ends a wait of `serve`. From any thread.
  void wake() noexcept;

  /// Ends `serve`. From any thread and from a signal handler.
  void stop() noexcept;

 private:
  struct Bus;
  std::unique_ptr<Bus> bus_;
};

}  // namespace kivo
