// The page on which a person shows what a message says, so that others like it are read so.
#pragma once

#include <cstdint>

namespace kivo::app {

class AppWindow;

/// Shows the message of the payment `id`, or the ignored message `number`, on a page of its own;
/// says so when there is none.
void openTeachPage(AppWindow& window, std::int64_t id);
void openTeachPageOfIgnored(AppWindow& window, std::int64_t number);

}  // namespace kivo::app
