#include "phone/widget_watch.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <memory>
#include <stdexcept>
#include <thread>

#include "platform/linux/process/command_line.h"
#include "platform/linux/widget_kit/widget_reload_listener.h"

namespace kivo {
namespace {

using linux_platform::WidgetReloadListener;

// SIGINT and SIGTERM while it lives, told to `onEnd` on a thread of its own. To be made before
// other threads, which are to leave these signals alone as well.
class EndSignals {
 public:
  EndSignals() {
    sigemptyset(&signals_);
    sigaddset(&signals_, SIGINT);
    sigaddset(&signals_, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  }
  ~EndSignals() {
    if (!waiting_.joinable()) return;
    leaving_ = true;
    pthread_kill(waiting_.native_handle(), SIGTERM);
    waiting_.join();
  }
  EndSignals(const EndSignals&) = delete;
  EndSignals& operator=(const EndSignals&) = delete;

  void tell(std::function<void()> onEnd) {
    waiting_ = std::thread([this, onEnd = std::move(onEnd)] {
      int signal = 0;
      sigwait(&signals_, &signal);
      if (leaving_) return;
      came_ = true;
      onEnd();
    });
  }

  [[nodiscard]] bool came() const { return came_; }

 private:
  sigset_t signals_{};
  std::atomic<bool> leaving_ = false;
  std::atomic<bool> came_ = false;
  std::thread waiting_;
};

}  // namespace

int WidgetWatch::run(const std::function<bool()>& draw) {
  EndSignals endSignals;
  std::unique_ptr<WidgetReloadListener> listener;
  try {
    listener = std::make_unique<WidgetReloadListener>();
  } catch (const std::runtime_error& error) {
    linux_platform::complain("kivo-phone", error.what());
    return 1;
  }
  endSignals.tell([&listener] { listener->stop(); });

  while (draw()) {
    listener->waitForReload(std::chrono::minutes(1));
    if (endSignals.came()) return 0;
    if (listener->lost()) {
      linux_platform::complain("kivo-phone", "the session bus is gone");
      return 1;
    }
  }
  return 1;
}

}  // namespace kivo
