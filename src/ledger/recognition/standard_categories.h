// The categories that readings of messages have.
#pragma once

#include <string_view>
#include <vector>

namespace kivo::ledger {

/// Returns their names, in no particular order.
std::vector<std::string_view> standardCategories();

}  // namespace kivo::ledger
