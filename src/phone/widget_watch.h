// Keeps the widget's figures on the screen up to date.
#pragma once

#include <functional>

namespace kivo::WidgetWatch {

/// Why the widget is drawn: the first time or after a reload signal, or else because time passed.
enum class Cause { reload, time };

/// Calls `draw` at once, at each reload signal and every two seconds, since queued texts, sign-ins
/// and new days send no signal. Blocks until SIGINT or SIGTERM. Throws CommandFailure when there is
/// no session bus or it is gone, and what `draw` throws.
void run(const std::function<void(Cause)>& draw);

}  // namespace kivo::WidgetWatch
