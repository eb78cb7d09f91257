// The most that a person wants to spend on a category in a month.
#pragma once

#include <optional>
#include <string>

#include "money/day.h"
#include "money/money.h"

namespace kivo::book {

struct Budget {
  /// In the spelling of the book.
  std::string category;
  money::Money amount;
  /// The only month for which it holds; absent when it holds for each month without its own.
  std::optional<money::Month> month = {};

  bool operator==(const Budget&) const = default;
};

}  // namespace kivo::book
