// Which saved expenses the widget's totals leave out. Hides them nowhere else.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace kivo {

/// The categories, by exact name, of money that moves without being spent.
struct StatsExcludedCategories {
  static constexpr std::array<std::string_view, 2> names = {"__system_transfer__",
                                                            "Credit Card Settlement"};

  static constexpr bool contains(std::string_view category) {
    return std::find(names.begin(), names.end(), category) != names.end();
  }
};

}  // namespace kivo
