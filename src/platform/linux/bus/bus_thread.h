// A bus connection with a thread of its own, which opens, serves and closes it. Included by the
// .cpp files that speak on the bus, nowhere else.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/bus/bus_connection.h"

namespace kivo::linux_platform {

/// Connects on its thread, since connecting can block for 25 s when the owner of the socket does
/// not answer.
class BusThread {
 public:
  /// Called with the connection, or with null when there is no bus or the connection is lost.
  using Step = std::function<void(DBusConnection*)>;

  struct Settings {
    /// The bus to connect to; nullopt for the session bus.
    std::optional<std::string> address = std::nullopt;
    /// Called on the thread before it connects.
    std::function<void()> beforehand = nullptr;
    /// Called on the thread when there is no bus or the connection is lost, but not after `finish`.
    std::function<void()> onGone = nullptr;
  };

  /// Starts the thread, which begins to connect. When the system has no thread left, there is no
  /// bus, and the functions in `settings` are not called.
  explicit BusThread(Settings settings);
  /// As `finish` with a limit of 0.
  ~BusThread();
  BusThread(const BusThread&) = delete;
  BusThread& operator=(const BusThread&) = delete;

  /// Calls `step` exactly once: on the thread, as soon as it is connected and in the order of the
  /// calls; or with null, possibly on the calling thread before this returns. `step` must not
  /// throw. Thread-safe.
  void post(Step step);

  /// Performs `step` on the thread, as soon as it is connected, and blocks until its end. Throws
  /// what `step` throws, and Failure when there is no bus or the step is not done within
  /// `timeout`; `step` may still be performed then.
  void performAndWait(Step step, std::chrono::milliseconds timeout);

  /// Sends `message`, which needs no reply, or drops it when there is no bus. Thread-safe.
  void send(const BusMessage& message);

  /// As `sendCall`. Calls `onReply` on the thread, or, when there is no bus, with null and possibly
  /// at once on the calling thread. Thread-safe.
  void call(const BusMessage& message, std::chrono::milliseconds timeout,
            std::function<void(const BusMessage& reply)> onReply);

  /// Closes the connection after the steps posted so far, and blocks until then for `limit` at
  /// most, or 50 ms if that is more and it is connected. Does not block while it is still
  /// connecting and no step was posted. A thread that has not ended by then is detached; its steps
  /// and further ones are called with null.
  void finish(std::chrono::nanoseconds limit);

 private:
  struct State;
  static void serve(State& state);
  static void serveConnection(State& state, DBusConnection* bus);

  std::shared_ptr<State> state_;
};

}  // namespace kivo::linux_platform
