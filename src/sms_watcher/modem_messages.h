// Reads the text messages on this device's modems from ModemManager, over the system bus. Never
// changes or deletes a message.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "sms_watcher/modem_message.h"

namespace kivo {

/// Not thread-safe, except where said.
class ModemMessages {
 public:
  /// The result of one `read`.
  struct Reading {
    /// Complete messages from the network. Others, and those that cannot be parsed, are left out.
    std::vector<ModemMessage> messages;
    /// Whether these are all messages on the modems.
    bool everything = false;
  };

  /// Connects to the system bus. `timeout` is that of each call to ModemManager. After a failure
  /// the modems are read again after `pause`, which doubles each time, up to five minutes.
  /// ModemManager need not run, and is not started. Throws Failure when there is no system bus.
  ModemMessages(std::chrono::milliseconds timeout, std::chrono::milliseconds pause);
  ~ModemMessages();
  ModemMessages(const ModemMessages&) = delete;
  ModemMessages& operator=(const ModemMessages&) = delete;

  /// Receives signals about messages until `stop`. Calls `beforeWaiting` before each wait; it
  /// returns the timeout of the wait, or nullopt for none. Returns false when the bus is gone.
  bool serve(const std::function<std::optional<std::chrono::milliseconds>()>& beforeWaiting);

  /// Returns the time until there is something to read; nullopt when there is no news or no
  /// ModemManager.
  [[nodiscard]] std::optional<std::chrono::milliseconds> untilReading() const;

  /// Reads the messages that are new since the last reading. Call it within `serve`. Blocks for
  /// ModemManager's replies, for at most one timeout when it does not reply.
  Reading read();

  /// Makes the next `read` read all messages.
  void lookAtAll();

  /// Ends the current wait of `serve`. Thread-safe.
  void wake() noexcept;

  /// Ends `serve`. Thread-safe and async-signal-safe.
  void stop() noexcept;

 private:
  struct Bus;
  std::unique_ptr<Bus> bus_;
};

}  // namespace kivo
