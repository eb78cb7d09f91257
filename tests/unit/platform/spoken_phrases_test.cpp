#include "platform/linux/app_intents/spoken_phrases.h"

#include <gmock/gmock.h>

#include "intents/expense_intents_extension.h"

namespace kivo::linux_platform {
namespace {

class ASpokenSentence : public ::testing::Test {
 protected:
  // The type of the intent that `sentence` matches; empty for none.
  [[nodiscard]] std::string meant(std::string_view sentence) const {
    const auto intent = intentSpokenOf(extension_, sentence);
    return intent ? std::string(intent->typeName()) : "";
  }

  platform::AppIntentsExtension extension_ = ExpenseIntentsExtension::make();
};

TEST_F(ASpokenSentence, MatchesTheIntentOfItsPhrase) {
  for (const auto* const phrase : {"Add expense in Kivo", "Log expense to Kivo",
                                   "Track purchase with Kivo", "Record expense in Kivo"}) {
    EXPECT_EQ(meant(phrase), "AddExpenseIntent") << phrase;
  }
  for (const auto* const phrase : {"Process bank SMS in Kivo", "Extract expense from SMS in Kivo",
                                   "Track SMS transaction in Kivo"}) {
    EXPECT_EQ(meant(phrase), "ProcessSMSIntent") << phrase;
  }
}

TEST_F(ASpokenSentence, MatchesInAnyLetterCase) {
  EXPECT_EQ(meant("log expense to kivo"), "AddExpenseIntent");
  EXPECT_EQ(meant("LOG EXPENSE TO KIVO"), "AddExpenseIntent");
  EXPECT_EQ(meant("Process bank sms in KIVO"), "ProcessSMSIntent");
}

TEST_F(ASpokenSentence, MatchesWithExtraBlanksOrAFinalStop) {
  for (const auto* const sentence :
       {"  Log expense to Kivo  ", "Log  expense \t to\nKivo", "Log expense to Kivo.",
        "Log expense to Kivo!", "Log expense to Kivo ?!", "Log expense to Kivo.\r\n"}) {
    EXPECT_EQ(meant(sentence), "AddExpenseIntent") << sentence;
  }
}

TEST_F(ASpokenSentence, DoesNotMatchASimilarPhrase) {
  for (const auto* const sentence :
       {"Log expense to", "Log expense", "Log expense to Kiv", "Log expense to Kivos",
        "Log expense toKivo", "Logexpense to Kivo", "Please log expense to Kivo",
        "Log expense to Kivo now", "Log expense in Kivo", "Log, expense to Kivo",
        ".Log expense to Kivo", "Kivo"}) {
    EXPECT_EQ(meant(sentence), "") << sentence;
  }
}

TEST_F(ASpokenSentence, DoesNotMatchInOtherScripts) {
  EXPECT_EQ(meant("سجل مصروف في Kivo"), "");
  EXPECT_EQ(meant("Log expense to Кivo"), "") << "with another alphabet's K";
  EXPECT_EQ(meant("Log\u00a0expense to Kivo"), "");
  EXPECT_EQ(meant("\xff\xfe"), "");
}

TEST_F(ASpokenSentence, MatchesNothingWhenEmpty) {
  for (const auto* const sentence : {"", " ", "\n", ".", " ?! "}) EXPECT_EQ(meant(sentence), "");
}

TEST_F(ASpokenSentence, MatchesNothingWhenItIsAMegabyteLong) {
  EXPECT_EQ(meant(std::string(1 << 20, 'x')), "");
  EXPECT_EQ(meant(std::string(1 << 20, ' ')), "");
  EXPECT_EQ(meant("Log" + std::string(1 << 20, ' ') + "expense to Kivo"), "AddExpenseIntent");
}

TEST_F(ASpokenSentence, CreatesANewIntentEachTime) {
  const auto first = intentSpokenOf(extension_, "Log expense to Kivo");
  platform::parameterNamed(*first, "merchant")->setFromText("Cafe");
  const auto second = intentSpokenOf(extension_, "Log expense to Kivo");
  EXPECT_FALSE(platform::parameterNamed(*second, "merchant")->hasValue());
}

TEST_F(ASpokenSentence, NeedsTheNameOfItsApplication) {
  extension_.applicationName = "Money Jar";
  EXPECT_EQ(meant("log expense to money jar"), "AddExpenseIntent");
  EXPECT_EQ(meant("Log expense to Kivo"), "");
}

TEST(ThePhrases, AreListedInTheOrderOfTheirShortcuts) {
  EXPECT_THAT(spokenPhrases(ExpenseIntentsExtension::make()),
              ::testing::ElementsAre("Add expense in Kivo", "Log expense to Kivo",
                                     "Track purchase with Kivo", "Record expense in Kivo",
                                     "Process bank SMS in Kivo", "Extract expense from SMS in Kivo",
                                     "Track SMS transaction in Kivo"));
}

}  // namespace
}  // namespace kivo::linux_platform
