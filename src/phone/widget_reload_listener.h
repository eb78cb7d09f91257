// Receives the signals that ask the widgets to reload.
#pragma once

#include <chrono>
#include <memory>

namespace kivo::linux_platform {
class BusThread;
}  // namespace kivo::linux_platform

namespace kivo {

class WidgetReloadListener {
 public:
  /// Connects to the session bus. Throws std::runtime_error with a one-line message when there is
  /// none.
  WidgetReloadListener();
  ~WidgetReloadListener();
  WidgetReloadListener(const WidgetReloadListener&) = delete;
  WidgetReloadListener& operator=(const WidgetReloadListener&) = delete;

  /// Blocks until a reload was requested since the last call, or the timeout; returns whether one
  /// was. Returns false at once after `stop` or when the bus is gone.
  bool waitForReload(std::chrono::milliseconds timeout);

  /// Thread-safe.
  void stop();

  /// True once the bus is gone.
  [[nodiscard]] bool lost() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
  std::unique_ptr<linux_platform::BusThread> bus_;
};

}  // namespace kivo
