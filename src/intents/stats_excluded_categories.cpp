#include "intents/stats_excluded_categories.h"

#include <algorithm>
#include <array>

namespace kivo {
namespace {

constexpr std::array<std::string_view, 2> names = {"__system_transfer__", "Credit Card Settlement"};

}  // namespace

bool StatsExcludedCategories::contains(std::string_view category) {
  return std::find(names.begin(), names.end(), category) != names.end();
}

}  // namespace kivo
