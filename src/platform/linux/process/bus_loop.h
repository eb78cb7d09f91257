// Serves one bus connection on the thread that calls it. Starts no thread; included by the .cpp
// files that speak on the bus, nowhere else.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace kivo::linux_platform {

/// What comes on a bus connection, whichever library has it.
class BusEvents {
 public:
  enum class Handled { something, nothing, busGone };
  /// What to wait for: the connection's descriptor to be ready, for so long at most, -1 for ever.
  struct Wait {
    int descriptor;
    short events;
    int limitInMilliseconds;
  };

  virtual ~BusEvents() = default;
  /// Handles one thing that has come or has still to be sent. Never throws.
  virtual Handled handleOne() = 0;
  virtual Wait wait() = 0;
};

class BusLoop {
 public:
  enum class End { stopped, busGone };
  /// Called before each wait, on the loop's thread; yields how long the loop may wait at most,
  /// none for ever.
  using BeforeWaiting = std::function<std::optional<std::chrono::milliseconds>()>;

  explicit BusLoop(std::unique_ptr<BusEvents> events);
  ~BusLoop();
  BusLoop(const BusLoop&) = delete;
  BusLoop& operator=(const BusLoop&) = delete;

  /// Handles what comes from the bus until `stop` is called or the bus is gone. Never throws.
  End run(const BeforeWaiting& beforeWaiting);

  /// Ends a wait, so that `BeforeWaiting` is called again. From any thread.
  void wake() noexcept;

  /// Ends `run` before its next wait. From any thread and from a signal handler.
  void stop() noexcept;

 private:
  void waitForEvents(std::optional<std::chrono::milliseconds> limit);

  std::unique_ptr<BusEvents> events_;
  int wakeDescriptor_;
  std::atomic<bool> stopping_ = false;
};

}  // namespace kivo::linux_platform
