// Categories by the words in a merchant's name. Keeps no list of merchants of its own.
#pragma once

#include <string_view>

namespace kivo {

/// The category of a merchant by its folded name (MessageText), empty when no word tells.
std::string_view merchantCategory(std::string_view foldedName);

}  // namespace kivo
