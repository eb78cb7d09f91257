// The categories that Kivo gives by itself, in no particular order.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace kivo::names {

inline constexpr auto standardCategories = std::to_array<std::string_view>({
    "Cash",          "Charity",   "Credit Card Settlement",
    "Dining",        "Education", "Entertainment",
    "Fees",          "Groceries", "Health",
    "Income",        "Insurance", "Loan",
    "Other",         "Phone",     "Refund",
    "Rent",          "Salary",    "Shopping",
    "Subscriptions", "Transfer",  "Transport",
    "Travel",        "Utilities",
});

/// Returns whether `name` is one of them, in this spelling.
constexpr bool isStandardCategory(std::string_view name) {
  return std::ranges::find(standardCategories, name) != standardCategories.end();
}

}  // namespace kivo::names
