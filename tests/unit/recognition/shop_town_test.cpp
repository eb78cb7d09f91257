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

TEST(AShopsName, EndsBeforeACapitalisedWordBehindAComma) {
  EXPECT_EQ(withoutTown("BLOCKED DRAIN SERVICES LLC, SEEB"), "BLOCKED DRAIN SERVICES LLC");
  EXPECT_EQ(withoutTown("Fern Cafe, Marrickville"), "Fern Cafe");
  EXPECT_EQ(withoutTown("Fern Foods, Inc"), "Fern Foods, Inc");
  EXPECT_EQ(withoutTown("Fern, Pine and Oak"), "Fern, Pine and Oak");
  EXPECT_EQ(withoutTown("PHP 30,000.00 CASH IN OK"), "PHP 30,000.00 CASH IN OK");
}

TEST(AShopsName, EndsBeforeATownAndAState) {
  EXPECT_EQ(withoutTown("CHICK-FIL-A, AUSTIN TX"), "CHICK-FIL-A");
  EXPECT_EQ(withoutTown("FIVE GUYS DENVER CO"), "FIVE GUYS");
  EXPECT_EQ(withoutTown("FERN FUEL CO"), "FERN FUEL CO");
}

TEST(AShopsName, KeepsATownWithoutAMark) {
  EXPECT_EQ(withoutTown("Bank of Cairo"), "Bank of Cairo");
  EXPECT_EQ(withoutTown("CAIRO EG"), "CAIRO EG");
  EXPECT_EQ(withoutTown("FERN EG"), "FERN EG");
  EXPECT_EQ(withoutTown(""), "");
}

}  // namespace
}  // namespace kivo::recognition
