#include "recognition/shop_town.h"

#include <gtest/gtest.h>

namespace kivo::recognition {
namespace {

TEST(AShopsName, EndsBeforeATownAndACountrysCode) {
  EXPECT_EQ(withoutTown("DECATHLON CAIRO EG"), "DECATHLON");
  EXPECT_EQ(withoutTown("FERN MART ABU DHABI AE"), "FERN MART");
  EXPECT_EQ(withoutTown("FERN MART, DUBAI AE"), "FERN MART");
}

TEST(AShopsName, EndsBeforeATownBehindAComma) {
  EXPECT_EQ(withoutTown("OASIS PHARMACY, DUBAI"), "OASIS PHARMACY");
  EXPECT_EQ(withoutTown("MAPLE HARDWARE, AUSTIN, TX"), "MAPLE HARDWARE, AUSTIN, TX");
}

TEST(AShopsName, KeepsATownWithoutAMark) {
  EXPECT_EQ(withoutTown("Bank of Cairo"), "Bank of Cairo");
  EXPECT_EQ(withoutTown("CAIRO EG"), "CAIRO EG");
  EXPECT_EQ(withoutTown("FERN EG"), "FERN EG");
  EXPECT_EQ(withoutTown(""), "");
}

}  // namespace
}  // namespace kivo::recognition
