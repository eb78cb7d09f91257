// The page of one payment: everything that can be corrected, look-alikes, its message, deletion.
#pragma once

#include <cstdint>

namespace kivo::app {

class AppWindow;

/// Shows the payment `id` on a page of its own; says so when it does not exist any more.
void openPaymentPage(AppWindow& window, std::int64_t id);

}  // namespace kivo::app
