// Keeps the widget's figures on the screen. Writes no figures.
#pragma once

#include <functional>

namespace kivo::WidgetWatch {

/// Calls `draw` at once, whenever a program asks the widgets to reload, and every two seconds,
/// since a text that is queued, a sign-in and a new day come without such a signal. Blocks until
/// SIGINT or SIGTERM and yields 0 then; yields 1 when `draw` yields false, or when there is no
/// session bus any more, which one line on standard error says.
int run(const std::function<bool()>& draw);

}  // namespace kivo::WidgetWatch
