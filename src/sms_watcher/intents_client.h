// Calls intents over the session bus, one at a time.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kivo::linux_platform {
class BusThread;
}  // namespace kivo::linux_platform

namespace kivo {

class IntentsClient {
 public:
  /// The outcome of a call.
  struct Outcome {
    /// Nullopt when the intent was performed, whatever its dialog; otherwise the D-Bus error name,
    /// which contains nothing from the message.
    std::optional<std::string> error;
  };

  /// Connects to the session bus and takes the bus name `ownName`, so that only one such client
  /// runs. `timeout` is that of each call. Throws Failure when there is no bus or another program
  /// owns the name. Calls `onChange` on the bus thread when a call has ended and when the bus is
  /// gone.
  IntentsClient(const std::string& ownName, std::chrono::milliseconds timeout,
                std::function<void()> onChange);
  ~IntentsClient();
  IntentsClient(const IntentsClient&) = delete;
  IntentsClient& operator=(const IntentsClient&) = delete;

  /// Starts a call of `intent` with one text parameter and returns at once. Call it only when
  /// `busy` is false. U+FFFD replaces what D-Bus cannot carry of `text`.
  void perform(const std::string& intent, const std::string& parameter, const std::string& text);

  /// Whether a call is in progress or its outcome was not taken yet.
  [[nodiscard]] bool busy() const;

  /// Returns the outcome of the call once; nullopt while the call is in progress. Blocks until the
  /// call has ended, for at most `timeout`.
  std::optional<Outcome> takeOutcome(std::chrono::milliseconds timeout = {});

  /// True once the bus is gone.
  [[nodiscard]] bool lost() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
  std::unique_ptr<linux_platform::BusThread> bus_;
};

}  // namespace kivo
