// The kinds of transactions: how one changes a person's money.
#pragma once

#include <optional>
#include <string_view>

namespace kivo::money {

enum class Kind { expense, income, transfer };

/// Returns "expense", "income" or "transfer".
const char* kindText(Kind kind);
/// Returns the kind of that name; absent for another text.
std::optional<Kind> kindFromText(std::string_view text);

}  // namespace kivo::money
