#include "app/signals.h"

#include <utility>

namespace kivo::app {

void onSignal(gpointer instance, const char* signal, std::function<void()> handler) {
  using Handler = std::function<void()>;
  const auto call = +[](gpointer data) noexcept { (*static_cast<Handler*>(data))(); };
  const auto destroy =
      +[](gpointer data, GClosure*) noexcept { delete static_cast<Handler*>(data); };
  // The arguments of the signal follow the data, and `call` does not read them.
  g_signal_connect_data(instance, signal, G_CALLBACK(call), new Handler(std::move(handler)),
                        destroy, G_CONNECT_SWAPPED);
}

void Later::call(std::function<void()> handler, std::chrono::milliseconds delay) {
  cancel();
  handler_ = std::move(handler);
  const auto run = +[](gpointer data) noexcept -> gboolean {
    auto& later = *static_cast<Later*>(data);
    later.source_ = 0;
    std::exchange(later.handler_, nullptr)();  // may destroy `later`
    return G_SOURCE_REMOVE;
  };
  // Below drawing, so that a page is on screen before it reads what takes time.
  source_ = delay.count() == 0 ? g_idle_add_full(G_PRIORITY_LOW, run, this, nullptr)
                               : g_timeout_add(static_cast<guint>(delay.count()), run, this);
}

void Later::cancel() {
  if (source_ != 0) g_source_remove(std::exchange(source_, 0));
  handler_ = nullptr;
}

}  // namespace kivo::app
