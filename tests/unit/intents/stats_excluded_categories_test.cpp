#include "intents/stats_excluded_categories.h"

#include <string>

#include <gtest/gtest.h>

namespace kivo {
namespace {

TEST(TheExcludedCategories, AreTransfersAndCreditCardSettlements) {
  for (const auto* const name : {"__system_transfer__", "Credit Card Settlement"}) {
    EXPECT_TRUE(StatsExcludedCategories::contains(name)) << name;
  }
}

TEST(TheExcludedCategories, AreComparedByTheWholeNameAndItsCase) {
  for (const std::string name : {"__system_transfer__", "Credit Card Settlement"}) {
    for (const std::string& other :
         {name + " fee", name + " ", " " + name, name.substr(0, name.size() - 1), name.substr(1)}) {
      EXPECT_FALSE(StatsExcludedCategories::contains(other)) << other;
    }
  }
  for (const auto* const other :
       {"", "_", "Credit Card", "credit card settlement", "__SYSTEM_TRANSFER__", "Groceries"}) {
    EXPECT_FALSE(StatsExcludedCategories::contains(other)) << other;
  }
}

}  // namespace
}  // namespace kivo
