#include "platform/app_intents/intent_parameter.h"

#include <limits>

#include <gtest/gtest.h>

namespace kivo::platform {
namespace {

using Limits = std::numeric_limits<double>;

IntentParameter<double> numberParameter() {
  return IntentParameter<double>({.name = "amount", .title = {"Amount"}, .description = {""}});
}

IntentParameter<std::string> textParameter() {
  return IntentParameter<std::string>({.name = "text", .title = {"Text"}, .description = {""}});
}

TEST(ANumberParameter, AcceptsDigitsSignPointAndExponent) {
  const std::vector<std::pair<std::string, double>> spellings{
      {"12.5", 12.5},  {"+5", 5},     {"-5", -5},  {"1e3", 1000}, {"1E3", 1000},
      {"2.5e-1", .25}, {"1e+2", 100}, {".5", .5},  {"5.", 5},     {"007", 7},
      {"0", 0},        {"1e-999", 0}, {"-0", -0.0}};
  for (const auto& [text, number] : spellings) {
    auto parameter = numberParameter();
    EXPECT_TRUE(parameter.setFromText(text)) << text;
    ASSERT_TRUE(parameter.hasValue()) << text;
    EXPECT_EQ(parameter.value(), number) << text;
  }
}

TEST(ANumberParameter, RefusesOtherTexts) {
  for (const std::string text :
       {"",    " ",   " 5",  "5 ",    "5\n",   "\t5", "0x10",  "0x1p3",  "inf", "-inf", "INFINITY",
        "nan", "NaN", "1,5", "1 000", "1'000", "1_0", "1e999", "-1e999", "٥",   "５",   "5€",
        "-",   "+",   ".",   "e5",    "1e",    "1e+", "1.2.3", "--5",    "+-5", "5-",   "nan(1)"}) {
    auto parameter = numberParameter();
    EXPECT_FALSE(parameter.setFromText(text)) << "\"" << text << "\"";
    EXPECT_FALSE(parameter.hasValue()) << "\"" << text << "\"";
  }
  EXPECT_FALSE(numberParameter().setFromText(std::string("5\0", 2)));
  EXPECT_FALSE(numberParameter().setFromText(std::string("5\0007", 3)));
}

TEST(ANumberParameter, AcceptsAVeryLongNumber) {
  auto parameter = numberParameter();
  EXPECT_TRUE(parameter.setFromText(std::string(100'000, '0') + "7"));
  EXPECT_EQ(parameter.value(), 7);
  EXPECT_FALSE(parameter.setFromText(std::string(100'000, '7')));
}

TEST(ANumberParameter, KeepsItsValueWhenANewOneIsRefused) {
  auto parameter = numberParameter();
  parameter.setFromText("5");
  EXPECT_FALSE(parameter.setFromText("five"));
  EXPECT_FALSE(parameter.set(std::string("6")));
  EXPECT_FALSE(parameter.set(Limits::infinity()));
  EXPECT_FALSE(parameter.set(Limits::quiet_NaN()));
  EXPECT_EQ(parameter.value(), 5);
}

TEST(ANumberParameter, AcceptsItsRangeInclusively) {
  IntentParameter<double> parameter({.name = "stars",
                                     .title = {"Stars"},
                                     .description = {""},
                                     .inclusiveRange = std::pair{1.0, 5.0}});
  for (const double fits : {1.0, 3.25, 5.0}) EXPECT_TRUE(parameter.set(fits)) << fits;
  for (const double doesNot : {0.0, 0.999, 5.001, -3.0}) {
    EXPECT_FALSE(parameter.set(doesNot)) << doesNot;
  }
  EXPECT_FALSE(parameter.setFromText("6"));
  EXPECT_EQ(parameter.value(), 5);
}

TEST(ANumberParameter, CanBeAssignedAnyNumberInCode) {
  auto parameter = numberParameter();
  parameter.assign(Limits::infinity());
  EXPECT_EQ(parameter.value(), Limits::infinity());
}

TEST(ATextParameter, KeepsATextUnchanged) {
  auto parameter = textParameter();
  for (const std::string& text :
       {std::string(), std::string(" \n"), std::string("-"), std::string("a\0b", 3),
        std::string("٥"), std::string(1 << 20, 'x')}) {
    EXPECT_TRUE(parameter.setFromText(text));
    EXPECT_EQ(parameter.value(), text);
  }
}

TEST(ATextParameter, RepairsInvalidUTF8) {
  auto parameter = textParameter();
  EXPECT_TRUE(parameter.setFromText("Caf\xff \xe2\x82"));
  EXPECT_EQ(parameter.value(), "Caf\ufffd \ufffd");
  EXPECT_TRUE(parameter.set(std::string("\xc0")));
  EXPECT_EQ(parameter.value(), "\ufffd");
}

TEST(ATextParameter, RefusesANumber) {
  auto parameter = textParameter();
  EXPECT_FALSE(parameter.set(5.0));
  EXPECT_FALSE(parameter.hasValue());
}

TEST(AParameter, IsEmptyUntilItIsSetUnlessItHasADefault) {
  EXPECT_FALSE(numberParameter().hasValue());
  EXPECT_FALSE(textParameter().hasValue());
  EXPECT_EQ(numberParameter().defaultValue(), std::nullopt);

  IntentParameter<double> parameter({.name = "a", .title = {"A"}, .description = {""}}, 2.5);
  EXPECT_TRUE(parameter.hasValue());
  EXPECT_EQ(parameter.value(), 2.5);
  parameter.set(3.0);
  EXPECT_EQ(parameter.value(), 3);
  EXPECT_EQ(parameter.defaultValue(), IntentValue(2.5)) << "the default stays";
}

}  // namespace
}  // namespace kivo::platform
