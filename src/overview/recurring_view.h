// The recurring payments as JSON and for a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "overview/recurring_payments.h"
#include "platform/foundation/json_encoder.h"

namespace kivo::overview::RecurringView {

/// Returns `payment` as a JSON object of texts: "description", "amount" (a plain decimal with the
/// currency's decimals), "currency", "category", "last", "next" (yyyy-MM-dd), "times".
platform::JSONEncoder json(const RecurringPayment& payment);

/// Returns a table of `payments`, one line each, without control characters. Lines are no longer
/// than `width` columns, unless the days and sums alone are; on a narrow screen they have the next
/// day, the sum and the description alone.
std::string table(const std::vector<RecurringPayment>& payments, std::size_t width);

/// Returns a line of `width` columns at most for each of `payments` that is due or late `today`,
/// such as "Rent is due on the 1st".
std::string dueLines(const std::vector<RecurringPayment>& payments, const money::Day& today,
                     std::size_t width);

}  // namespace kivo::overview::RecurringView
