// The event loop of one bus connection. Starts no thread; included by the .cpp files that speak on
// the bus, nowhere else.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

struct DBusConnection;

namespace kivo::linux_platform {

class BusLoop {
 public:
  enum class End { stopped, busGone };
  /// Called before each wait, on the loop's thread. Returns the longest time to wait; nullopt for
  /// no limit.
  using BeforeWaiting = std::function<std::optional<std::chrono::milliseconds>()>;

  /// `bus` must outlive this object and has at most one loop at a time. Throws Failure when no
  /// file descriptor is left.
  explicit BusLoop(DBusConnection* bus);
  ~BusLoop();
  BusLoop(const BusLoop&) = delete;
  BusLoop& operator=(const BusLoop&) = delete;

  /// Handles the messages of the bus until `stop` is called or the connection is lost. Throws only
  /// what `beforeWaiting` throws.
  End run(const BeforeWaiting& beforeWaiting);

  /// Ends a wait, so that `BeforeWaiting` is called again. Thread-safe and async-signal-safe.
  void wake() noexcept;

  /// Ends `run` before its next wait. Thread-safe and async-signal-safe.
  void stop() noexcept;

 private:
  class Deadlines;

  bool handleOne();
  void wait(std::optional<std::chrono::milliseconds> limit);

  DBusConnection* bus_;
  std::unique_ptr<Deadlines> deadlines_;
  int wakeDescriptor_;
  bool waited_ = false;
  std::atomic<bool> stopping_ = false;
};

}  // namespace kivo::linux_platform
