#include "testkit/reload_listener.h"

#include <atomic>
#include <thread>

#include "platform/linux/bus/bus_signal.h"
#include "platform/linux/bus/bus_thread.h"

namespace kivo::testkit {

struct ReloadListener::State {
  std::atomic<int> reloads = 0;
  linux_platform::BusThread bus{{}};
};

ReloadListener::ReloadListener() : state_(std::make_unique<State>()) {
  state_->bus.performAndWait(
      [this](DBusConnection* bus) {
        linux_platform::subscribe(bus,
                                  {.interface = "app.kivo.WidgetCenter1",
                                   .member = "ReloadAllTimelines",
                                   .path = "/app/kivo/WidgetCenter"},
                                  [this](const auto&) { ++state_->reloads; });
      },
      std::chrono::seconds(10));
}

// The bus's thread counts until it ends.
ReloadListener::~ReloadListener() { state_->bus.finish(std::chrono::seconds(10)); }

bool ReloadListener::waitForReload(std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (state_->reloads == 0 && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return state_->reloads.exchange(0) > 0;
}

}  // namespace kivo::testkit
