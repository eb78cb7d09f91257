// Categories by the words in a payee's name. Keeps no list of merchants of its own.
#pragma once

#include <string_view>

namespace kivo::ledger {

/// The category of a payee by its name as a message writes it; empty when no word tells.
std::string_view merchantCategory(std::string_view name);

}  // namespace kivo::ledger
