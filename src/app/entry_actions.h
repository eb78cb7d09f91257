// What a person decides on a payment from several pages.
#pragma once

#include <cstdint>

namespace kivo::app {

class AppWindow;

/// Books the payment `id` as it was read; when its sum cannot be booked, says so and shows its
/// page.
void saysRight(AppWindow& window, std::int64_t id);

/// Deletes the payment `id`, and returns whether it did. Undo brings it back without its text.
bool deletePayment(AppWindow& window, std::int64_t id);

}  // namespace kivo::app
