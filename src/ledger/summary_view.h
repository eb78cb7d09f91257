// The summary of a month as JSON and for a terminal.
#pragma once

#include <cstddef>
#include <string>

#include "ledger/month_summary.h"
#include "platform/foundation/json_encoder.h"

namespace kivo::ledger::SummaryView {

/// `summary` as a JSON object, all members texts or arrays of such objects: "month", "currency",
/// "expense", "income", "transfer", "transactions", "review", "previous", "categories", "payees",
/// "other_currencies". Sums are plain decimals with the currency's decimals.
platform::JSONEncoder json(const MonthSummary& summary);

}  // namespace kivo::ledger::SummaryView
