// Connects GTK's signals and timers to functions.
#pragma once

#include <chrono>
#include <functional>

#include <glib-object.h>

namespace kivo::app {

/// Calls `handler` at each `signal` of `instance`, whatever its arguments, until the instance is
/// destroyed. The handler throws nothing.
void onSignal(gpointer instance, const char* signal, std::function<void()> handler);

/// A call to come. Destroying it cancels the call.
class Later {
 public:
  Later() = default;
  ~Later() { cancel(); }
  Later(const Later&) = delete;
  Later& operator=(const Later&) = delete;

  /// Calls `handler` once from the main loop: after `delay`, or, without one, when nothing else is
  /// to be done. Replaces a call that is still to come. The handler throws nothing.
  void call(std::function<void()> handler, std::chrono::milliseconds delay = {});
  void cancel();
  [[nodiscard]] bool isPending() const { return source_ != 0; }

 private:
  std::function<void()> handler_;
  guint source_ = 0;
};

}  // namespace kivo::app
