// Hears the programs that ask the widgets to reload. Reads no figures.
#pragma once

#include <chrono>
#include <memory>

namespace kivo::linux_platform {
class BusThread;
}  // namespace kivo::linux_platform

namespace kivo {

class WidgetReloadListener {
 public:
  /// Connects to the session bus; throws std::runtime_error with one line when there is none.
  WidgetReloadListener();
  ~WidgetReloadListener();
  WidgetReloadListener(const WidgetReloadListener&) = delete;
  WidgetReloadListener& operator=(const WidgetReloadListener&) = delete;

  /// Blocks until a reload was asked for since the last call, or the limit; true when one was.
  /// False at once and for ever after stop() or when the bus is gone.
  bool waitForReload(std::chrono::milliseconds limit);

  /// From any thread.
  void stop();

  /// True once the bus is gone.
  [[nodiscard]] bool lost() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
  std::unique_ptr<linux_platform::BusThread> bus_;
};

}  // namespace kivo
