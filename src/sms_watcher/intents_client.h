// Has intents performed over the session bus, one at a time. Performs none itself.
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
  /// What became of a call.
  struct Outcome {
    /// Nothing when the intent was performed, whatever its dialog says; else the name of the
    /// error, which holds nothing of what was given.
    std::optional<std::string> error;
  };

  /// Connects to the session bus and takes `ownName` there, by which there is one such client at a
  /// time. A call ends with an error after `timeout`. Throws std::runtime_error with one line when
  /// there is no bus or the name is another program's. `onChange` is called on a thread of its own
  /// when a call has ended, and when the bus is gone.
  IntentsClient(const std::string& ownName, std::chrono::milliseconds timeout,
                std::function<void()> onChange);
  ~IntentsClient();
  IntentsClient(const IntentsClient&) = delete;
  IntentsClient& operator=(const IntentsClient&) = delete;

  /// Begins to perform `intent` with one text parameter, and returns at once. To be called when no
  /// call is under way and the outcome of the last one was taken. What the bus cannot carry of
  /// `text` is replaced by U+FFFD.
  void perform(const std::string& intent, const std::string& parameter, const std::string& text);

  /// Whether a call is under way, or has an outcome that was not taken.
  [[nodiscard]] bool busy() const;

  /// The outcome of the call, once; none while it is under way. Waits for it, `limit` at most.
  std::optional<Outcome> takeOutcome(std::chrono::milliseconds limit = {});

  /// True once the bus is gone.
  [[nodiscard]] bool lost() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
  std::unique_ptr<linux_platform::BusThread> bus_;
};

}  // namespace kivo
