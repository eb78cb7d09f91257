// Keeps the widget's figures on the screen up to date.
#pragma once

#include <functional>

namespace kivo::WidgetWatch {

/// Why the widget is drawn: the first time or after a reload signal, or else because time passed.
enum class Cause { reload, time };

/// Calls `draw` at once, at each reload signal and every two seconds, since queued texts, sign-ins
/// and new days send no signal. Blocks until SIGINT or SIGTERM and returns 0. Returns 1 when `draw`
/// returns false, or, after one line on standard error, when the session bus is gone.
int run(const std::function<bool(Cause)>& draw);

}  // namespace kivo::WidgetWatch
