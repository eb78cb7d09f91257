// The page of a message that was not booked: books it as the person states.
#pragma once

#include <cstdint>

namespace kivo::app {

class AppWindow;

/// Shows the ignored message `number` on a page of its own; says so when it does not exist.
void openIgnoredPage(AppWindow& window, std::int64_t number);

}  // namespace kivo::app
