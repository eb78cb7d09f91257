#include "phone/widget_watch.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <memory>
#include <stdexcept>
#include <thread>

#include "phone/widget_reload_listener.h"
#include "platform/linux/terminal/command_line.h"

namespace kivo {
namespace {

// A run that queues a text sends no reload signal, nor does a sign-in or a new day.
constexpr std::chrono::seconds pollInterval(2);

// Blocks SIGINT and SIGTERM in this thread and in those that it starts later.
sigset_t withheldEndSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return signals;
}

// Waits for one of the blocked signals on its own thread, then stops the listener.
class EndSignal {
 public:
  EndSignal(sigset_t signals, WidgetReloadListener& listener)
      : waiting_([this, signals, &listener] {
          int signal = 0;
          sigwait(&signals, &signal);
          came_ = true;
          listener.stop();
        }) {}
  ~EndSignal() {
    pthread_kill(waiting_.native_handle(), SIGINT);
    waiting_.join();
  }
  EndSignal(const EndSignal&) = delete;
  EndSignal& operator=(const EndSignal&) = delete;

  [[nodiscard]] bool came() const { return came_; }

 private:
  std::atomic<bool> came_ = false;
  std::thread waiting_;
};

}  // namespace

int WidgetWatch::run(const std::function<bool()>& draw) {
  const sigset_t signals = withheldEndSignals();
  std::unique_ptr<WidgetReloadListener> listener;
  try {
    listener = std::make_unique<WidgetReloadListener>();
  } catch (const std::runtime_error& error) {
    linux_platform::complain("kivo-phone", error.what());
    return 1;
  }
  const EndSignal end(signals, *listener);

  while (draw()) {
    listener->waitForReload(pollInterval);
    if (end.came()) return 0;
    if (listener->lost()) {
      linux_platform::complain("kivo-phone", "the session bus is gone");
      return 1;
    }
  }
  return 1;
}

}  // namespace kivo
