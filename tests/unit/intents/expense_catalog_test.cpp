// The declarations of the extension to the system.
#include <array>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "intents/add_expense_intent.h"
#include "intents/expense_intents_extension.h"
#include "intents/expense_shortcuts.h"
#include "intents/process_sms_intent.h"

namespace kivo {
namespace {

using platform::AnyIntentParameter;
using platform::AppIntent;
using platform::InputConnectionBehavior;
using platform::LocalizedStringResource;
using ::testing::ElementsAre;
using ValueType = AnyIntentParameter::ValueType;

TEST(TheExtension, CreatesItsTwoIntentsOnEachRequest) {
  const auto extension = ExpenseIntentsExtension::make();
  EXPECT_EQ(extension.applicationName, "Kivo");
  ASSERT_EQ(extension.intents.size(), 2u);
  EXPECT_EQ(extension.intents[0]()->typeName(), "AddExpenseIntent");
  EXPECT_EQ(extension.intents[1]()->typeName(), "ProcessSMSIntent");
  const auto first = extension.makeIntent("AddExpenseIntent");
  const auto second = extension.makeIntent("AddExpenseIntent");
  EXPECT_NE(first.get(), second.get());
  EXPECT_EQ(extension.makeIntent("addExpenseIntent"), nullptr);
  EXPECT_EQ(extension.makeIntent(""), nullptr);
}

TEST(AnIntent, RunsWithoutOpeningTheApp) {
  EXPECT_FALSE(AddExpenseIntent().openAppWhenRun());
  EXPECT_FALSE(ProcessSMSIntent().openAppWhenRun());
}

void expectDefaults(const AppIntent& intent) {
  const platform::IntentMetadata metadata = intent.metadata();
  EXPECT_EQ(metadata.description, std::nullopt);
  EXPECT_EQ(metadata.supportedModes, platform::IntentModes::background);
  EXPECT_EQ(metadata.authenticationPolicy, platform::IntentAuthenticationPolicy::alwaysAllowed);
  EXPECT_TRUE(metadata.isDiscoverable);
  EXPECT_EQ(metadata.parameterSummary, std::nullopt);
  EXPECT_EQ(metadata.persistentIdentifier, std::nullopt);
}

TEST(AnIntent, HasDefaultsForAllOtherMetadata) {
  expectDefaults(AddExpenseIntent());
  expectDefaults(ProcessSMSIntent());
}

TEST(AnIntentsTitle, IsTheTextShownToUsers) {
  EXPECT_EQ(AddExpenseIntent().title(), LocalizedStringResource{"Add Expense"});
  EXPECT_EQ(ProcessSMSIntent().title(), LocalizedStringResource{"Process Bank SMS"});
}

TEST(AnIntentsTitle, IsTheSameObjectOnEachRequest) {
  EXPECT_EQ(&AddExpenseIntent().title(), &AddExpenseIntent().title());
  EXPECT_EQ(&ProcessSMSIntent().title(), &ProcessSMSIntent().title());
}

// Run by itself, as ctest does, this is the first request; the thread sanitizer watches it.
TEST(AnIntentsTitle, IsCreatedOnceForConcurrentThreads) {
  std::array<const LocalizedStringResource*, 8> seen{};
  {
    std::vector<std::jthread> threads;
    threads.reserve(seen.size());
    for (auto& place : seen)
      threads.emplace_back([&place] { place = &AddExpenseIntent().title(); });
  }
  EXPECT_THAT(seen, ::testing::Each(&AddExpenseIntent().title()));
  EXPECT_EQ(seen[0]->key, "Add Expense");
}

void expectRequiredWithFrameworkDefaults(const AnyIntentParameter& parameter) {
  EXPECT_EQ(parameter.defaultValue(), std::nullopt);
  EXPECT_FALSE(parameter.hasValue());
  EXPECT_EQ(parameter.settings().requestValueDialog, std::nullopt);
  EXPECT_EQ(parameter.settings().inclusiveRange, std::nullopt);
  EXPECT_EQ(parameter.settings().inputOptions, std::nullopt);
  EXPECT_EQ(parameter.settings().inputConnectionBehavior, InputConnectionBehavior::standard);
}

TEST(AddExpensesParameters, AreAmountAndMerchant) {
  AddExpenseIntent intent;
  EXPECT_THAT(intent.parameters(), ElementsAre(&intent.amount, &intent.merchant));
}

TEST(AddExpensesParameters, HaveAnAmountOnAStepper) {
  const AddExpenseIntent intent;
  const auto& settings = intent.amount.settings();
  EXPECT_EQ(settings.name, "amount");
  EXPECT_EQ(settings.title.key, "Amount");
  EXPECT_EQ(settings.description.key, "Transaction amount");
  EXPECT_EQ(settings.controlStyle, platform::ControlStyle::stepper);
  EXPECT_EQ(intent.amount.valueType(), ValueType::number);
  expectRequiredWithFrameworkDefaults(intent.amount);
}

TEST(AddExpensesParameters, HaveAMerchantAsText) {
  const AddExpenseIntent intent;
  const auto& settings = intent.merchant.settings();
  EXPECT_EQ(settings.name, "merchant");
  EXPECT_EQ(settings.title.key, "Merchant");
  EXPECT_EQ(settings.description.key, "Merchant name or description");
  EXPECT_EQ(settings.controlStyle, std::nullopt);
  EXPECT_EQ(intent.merchant.valueType(), ValueType::text);
  expectRequiredWithFrameworkDefaults(intent.merchant);
}

TEST(ProcessSMSsParameter, IsTheTextOfTheMessage) {
  ProcessSMSIntent intent;
  EXPECT_THAT(intent.parameters(), ElementsAre(&intent.smsText));
  const auto& settings = intent.smsText.settings();
  EXPECT_EQ(settings.name, "smsText");
  EXPECT_EQ(settings.title.key, "SMS Text");
  EXPECT_EQ(settings.description.key, "The bank SMS message text");
  EXPECT_EQ(settings.controlStyle, std::nullopt);
  EXPECT_EQ(intent.smsText.valueType(), ValueType::text);
  expectRequiredWithFrameworkDefaults(intent.smsText);
}

// The phrases as they are said for an application called |, so that nothing can hide around it.
std::vector<std::string> phrasesOf(const platform::AppShortcut& shortcut) {
  std::vector<std::string> phrases;
  for (const auto& phrase : shortcut.phrases) phrases.push_back(phrase.said("|"));
  return phrases;
}

TEST(TheShortcuts, AreAddExpenseThenProcessSMS) {
  const auto shortcuts = ExpenseShortcuts::appShortcuts();
  ASSERT_EQ(shortcuts.size(), 2u);
  EXPECT_EQ(shortcuts[0].intent->typeName(), "AddExpenseIntent");
  EXPECT_EQ(shortcuts[0].shortTitle.key, "Add Expense");
  EXPECT_EQ(shortcuts[0].systemImageName, "dollarsign.circle");
  EXPECT_EQ(shortcuts[1].intent->typeName(), "ProcessSMSIntent");
  EXPECT_EQ(shortcuts[1].shortTitle.key, "Process Bank SMS");
  EXPECT_EQ(shortcuts[1].systemImageName, "message.fill");
  EXPECT_EQ(ExpenseIntentsExtension::make().shortcutTileColor,
            platform::ShortcutTileColor::standard);
}

TEST(TheShortcuts, EndEachPhraseWithTheApplicationsName) {
  const auto shortcuts = ExpenseShortcuts::appShortcuts();
  EXPECT_THAT(phrasesOf(shortcuts.at(0)),
              ElementsAre("Add expense in |", "Log expense to |", "Track purchase with |",
                          "Record expense in |"));
  EXPECT_THAT(phrasesOf(shortcuts.at(1)),
              ElementsAre("Process bank SMS in |", "Extract expense from SMS in |",
                          "Track SMS transaction in |"));
}

TEST(TheShortcuts, HaveNewIntentsOnEachRequest) {
  const auto extension = ExpenseIntentsExtension::make();
  const auto first = extension.appShortcuts();
  platform::parameterNamed(*first[0].intent, "merchant")->setFromText("Cafe");
  const auto second = extension.appShortcuts();
  for (std::size_t index = 0; index < second.size(); ++index) {
    EXPECT_NE(first[index].intent.get(), second[index].intent.get());
    for (const auto* const parameter : second[index].intent->parameters()) {
      EXPECT_FALSE(parameter->hasValue()) << parameter->settings().name;
    }
  }
}

}  // namespace
}  // namespace kivo
