// The categories that the widget's totals exclude: money that moves without being spent.
#pragma once

#include <string_view>

namespace kivo::StatsExcludedCategories {

/// Returns whether `category` is one of them. Compares exact names. Thread-safe.
bool contains(std::string_view category);

}  // namespace kivo::StatsExcludedCategories
