// Serves one bus connection on the thread that calls it. Starts no thread; included by the .cpp
// files that speak on the bus, nowhere else.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace sdbus {
class IConnection;
}

namespace kivo::linux_platform {

class BusLoop {
 public:
  enum class End { stopped, busGone };
  /// Called before each wait, on the loop's thread; yields how long the loop may wait at most,
  /// none for ever.
  using BeforeWaiting = std::function<std::optional<std::chrono::milliseconds>()>;

  explicit BusLoop(std::unique_ptr<sdbus::IConnection> connection);
  ~BusLoop();
  BusLoop(const BusLoop&) = delete;
  BusLoop& operator=(const BusLoop&) = delete;

  /// To be used on the thread that runs the loop, or before it runs.
  [[nodiscard]] sdbus::IConnection& connection() { return *connection_; }

  /// Handles what comes from the bus until `stop` is called or the bus is gone. Never throws.
  End run(const BeforeWaiting& beforeWaiting);

  /// Ends a wait, so that `BeforeWaiting` is called again. From any thread.
  void wake() noexcept;

  /// Ends `run` before its next wait. From any thread and from a signal handler.
  void stop() noexcept;

 private:
  void waitForEvents(std::optional<std::chrono::milliseconds> limit);

  std::unique_ptr<sdbus::IConnection> connection_;
  int wakeDescriptor_;
  std::atomic<bool> stopping_ = false;
};

}  // namespace kivo::linux_platform
