#include "platform/linux/app_intents/called_intent.h"

#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "intents/add_expense_intent.h"
#include "intents/expense_intents_extension.h"
#include "intents/process_sms_intent.h"
#include "platform/linux/bus/bus_refusal.h"
#include "platform/linux/bus/intents_interface.h"

namespace kivo {
namespace {

using linux_platform::calledIntent;
using linux_platform::CalledValues;
namespace wire = linux_platform::intents_interface;

const platform::AppIntentsExtension extension = ExpenseIntentsExtension::make();

template <typename Intent>
std::unique_ptr<Intent> ready(CalledValues values) {
  auto intent = calledIntent(extension, std::string(Intent().typeName()), std::move(values));
  return std::unique_ptr<Intent>(dynamic_cast<Intent*>(intent.release()));
}

std::pair<std::string, std::string> refusal(const std::string& typeName, CalledValues values) {
  try {
    calledIntent(extension, typeName, std::move(values));
  } catch (const linux_platform::BusRefusal& refused) {
    return {refused.name(), refused.what()};
  }
  return {"none", ""};
}

TEST(ACalledIntent, ReceivesItsTextUnchanged) {
  const auto intent = ready<ProcessSMSIntent>({{"smsText", " Paid\n150 "}});
  ASSERT_NE(intent, nullptr);
  EXPECT_EQ(intent->smsText.value(), " Paid\n150 ");
}

TEST(ACalledIntent, AcceptsAnEmptyText) {
  EXPECT_NE(ready<ProcessSMSIntent>({{"smsText", ""}}), nullptr);
}

TEST(ACalledIntent, ReceivesEachParameterByItsName) {
  const auto intent = ready<AddExpenseIntent>({{"merchant", "Cafe"}, {"amount", -0.5}});
  ASSERT_NE(intent, nullptr);
  EXPECT_EQ(intent->merchant.value(), "Cafe");
  EXPECT_EQ(intent->amount.value(), -0.5);
}

TEST(ACalledIntent, IsRefusedUnderAnUnknownName) {
  EXPECT_EQ(refusal("processSMSIntent", {}),
            std::pair(std::string(wire::unknownIntent),
                      std::string(
                          "unknown intent; the intents are: AddExpenseIntent, ProcessSMSIntent")));
}

TEST(ACalledIntent, IsRefusedWithAnUnknownParameter) {
  EXPECT_EQ(refusal("AddExpenseIntent", {{"Secret", "Cafe"}}),
            std::pair(std::string(wire::unknownParameter),
                      std::string("unknown parameter; the parameters are: amount, merchant")));
}

TEST(ACalledIntent, IsRefusedWithAMissingParameter) {
  EXPECT_EQ(refusal("AddExpenseIntent", {{"amount", 1.0}}),
            std::pair(std::string(wire::missingParameter), std::string("merchant is missing")));
}

TEST(ACalledIntent, IsRefusedWithAValueOfAnotherType) {
  const std::pair text(std::string(wire::invalidParameter),
                       std::string("smsText must be a text (s)"));
  EXPECT_EQ(refusal("ProcessSMSIntent", {{"smsText", 1.5}}), text);
  EXPECT_EQ(refusal("ProcessSMSIntent", {{"smsText", std::nullopt}}), text);
  const std::pair number(std::string(wire::invalidParameter),
                         std::string("amount must be a finite number (d)"));
  EXPECT_EQ(refusal("AddExpenseIntent", {{"amount", "1.5"}, {"merchant", "Cafe"}}), number);
  EXPECT_EQ(refusal("AddExpenseIntent", {{"amount", std::nullopt}, {"merchant", "Cafe"}}), number);
}

TEST(ACalledIntent, IsRefusedWithANumberThatIsNotFinite) {
  for (const double amount :
       {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(refusal("AddExpenseIntent", {{"amount", amount}, {"merchant", "Cafe"}}).first,
              wire::invalidParameter);
  }
}

TEST(ACalledIntent, ReportsWrongParametersBeforeMissingOnes) {
  EXPECT_EQ(refusal("AddExpenseIntent", {{"x", 1.0}, {"amount", "1"}}).first,
            wire::unknownParameter);
  EXPECT_EQ(refusal("AddExpenseIntent", {{"amount", "1"}}).first, wire::invalidParameter);
}

}  // namespace
}  // namespace kivo
