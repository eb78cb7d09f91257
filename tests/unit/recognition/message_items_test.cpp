#include "recognition/message_items.h"

#include <gtest/gtest.h>

namespace kivo::recognition {
namespace {

TEST(ANumber, EndsBeforeADate) {
  EXPECT_EQ(itemsOf("5000.00,21-11-2026").front().text, "5000.00");
  EXPECT_EQ(itemsOf("5000.00,21-1").front().text, "5000.00");
  EXPECT_EQ(itemsOf("5000.00,21-").front().text, "5000.00,21");
}

TEST(ANumber, MayBeginWithItsPoint) {
  EXPECT_EQ(itemsOf(".93").front().text, ".93");
  EXPECT_EQ(itemsOf("-.93").back().text, ".93");
  EXPECT_EQ(itemsOf("$.93").back().text, ".93");
  EXPECT_EQ(itemsOf("total\n.93").back().text, ".93");
  EXPECT_EQ(itemsOf("Rs.93").back().text, "93");
}

TEST(AWord, IsCapitalsWhenAllItsLettersAre) {
  EXPECT_TRUE(itemsOf("AZ'A").front().capitals);
  EXPECT_FALSE(itemsOf("AZa").front().capitals);
}

}  // namespace
}  // namespace kivo::recognition
