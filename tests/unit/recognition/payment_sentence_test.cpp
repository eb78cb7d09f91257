#include "recognition/payment_sentence.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "unit/recognition/reading_text.h"

namespace kivo::recognition {
namespace {

std::string of(std::string_view text) {
  const auto reading = paymentSentence(text, "EGP");
  return reading ? readingText(*reading, "EGP", true) : "absent";
}

TEST(APaymentSentence, MayHaveAnExponent) {
  EXPECT_EQ(of("Paid 1.5e+2 EGP at Cafe"), "expense 150.00 | Cafe");
  EXPECT_EQ(of("Paid 1.5e1 EGP at Cafe"), "expense 15.00 | Cafe");
  EXPECT_EQ(of("Paid 1.5e-1 EGP at Cafe"), "expense 0.15 | Cafe");
  EXPECT_EQ(of("Paid 15e-1 EGP at Cafe"), "expense 1.50 | Cafe");
  EXPECT_EQ(of("Paid 1e-05 EGP at Cafe"), "review ?");
  EXPECT_EQ(of("Paid 1e+30 EGP at Cafe"), "review ?");
  EXPECT_EQ(of("Paid 1e-30 EGP at Cafe"), "review ?");
}

TEST(APaymentSentence, NeedsANumber) {
  for (const char* const number : {"", "x", "1x", "1e", "1ex", "1e+", "1e+31", "100e-31", "-5"}) {
    EXPECT_EQ(of("Paid " + std::string(number) + " EGP at Cafe"), "absent") << number;
  }
}

TEST(APaymentSentence, NeedsOneWordForItsCurrencyAndAPlace) {
  EXPECT_EQ(of("Paid 5 EGP at Cafe at Sea"), "expense 5.00 | Cafe at Sea");
  EXPECT_EQ(of("Paid 5 USD at Cafe"), "review USD 5.00 | Cafe");
  EXPECT_EQ(of("Paid 5  at Cafe"), "expense 5.00 | Cafe");
  EXPECT_EQ(of("Paid 5 EGP at "), "expense 5.00 | -");
  for (const char* const text :
       {"Paid 5 at Cafe", "Paid 5 E P at Cafe", "Paid 5 EGP", "Paid 5", "paid 5 EGP at Cafe", ""}) {
    EXPECT_EQ(of(text), "absent") << text;
  }
}

TEST(APaymentSentence, IsNoTransactionWithoutMoney) {
  EXPECT_EQ(of("Paid 0.0 EGP at Cafe"), "none");
}

}  // namespace
}  // namespace kivo::recognition
