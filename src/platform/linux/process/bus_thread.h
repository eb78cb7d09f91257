// A bus connection with the one thread that makes, serves and ends it. Knows no service; included
// by the .cpp files that speak on the bus, nowhere else.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/process/bus_names.h"

namespace sdbus {
class IConnection;
class IProxy;
}  // namespace sdbus

namespace kivo::linux_platform {

/// A connection that stands, and what goes with it. Used on the bus's thread only.
class StandingConnection {
 public:
  explicit StandingConnection(sdbus::IConnection& connection) : connection_(connection) {}
  ~StandingConnection();
  StandingConnection(const StandingConnection&) = delete;
  StandingConnection& operator=(const StandingConnection&) = delete;

  [[nodiscard]] sdbus::IConnection& connection() { return connection_; }
  /// The means to call methods of `object`, made at its first use.
  sdbus::IProxy& proxy(const BusObject& object);
  /// Keeps `thing` until just before the connection ends.
  void keep(std::shared_ptr<void> thing) { kept_.push_back(std::move(thing)); }

 private:
  sdbus::IConnection& connection_;
  std::map<std::string, std::unique_ptr<sdbus::IProxy>> proxies_;
  std::vector<std::shared_ptr<void>> kept_;
};

/// Connecting begins with the object and is waited for by nobody: a socket that says nothing would
/// hold its caller for 90 s.
class BusThread {
 public:
  using Connect = std::function<std::unique_ptr<sdbus::IConnection>()>;
  /// Is handed null when there is no bus (any more). An sdbus::Error that it throws is dropped.
  using Step = std::function<void(StandingConnection*)>;

  /// Starts the thread. `connect` is called on it and throws sdbus::Error when there is no bus;
  /// `onGone`, if any, is called on it once there is none, but not after `finish`.
  explicit BusThread(Connect connect, std::function<void()> onGone = nullptr);
  /// As `finish` without waiting for steps.
  ~BusThread();
  BusThread(const BusThread&) = delete;
  BusThread& operator=(const BusThread&) = delete;

  /// Has `step` called exactly once: on the bus's thread as soon as the connection stands, in the
  /// order of the calls, or with null, possibly at once on the calling thread. From any thread.
  void post(Step step);

  /// Ends the connection after the steps posted so far. Waits for it at most `limit`, and not at
  /// all when it is still being made and no step was posted; a thread that still connects by then
  /// is left to itself, and its steps are called with null. Further steps are called with null.
  void finish(std::chrono::nanoseconds limit);

 private:
  struct State;
  static void serve(const std::shared_ptr<State>& state);

  std::shared_ptr<State> state_;
};

}  // namespace kivo::linux_platform
