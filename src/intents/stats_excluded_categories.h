// The categories that the widget's totals exclude.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace kivo {

/// Categories of money that moves without being spent. Compared by exact name.
struct StatsExcludedCategories {
  static constexpr std::array<std::string_view, 2> names = {"__system_transfer__",
                                                            "Credit Card Settlement"};

  static constexpr bool contains(std::string_view category) {
    return std::find(names.begin(), names.end(), category) != names.end();
  }
};

}  // namespace kivo
