#include "platform/linux/app_intents/shortcut_search.h"

#include <gmock/gmock.h>

#include "testkit/rate_merchant_intent.h"

namespace kivo::linux_platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Terms = std::vector<std::string>;

class ASearch : public ::testing::Test {
 protected:
  [[nodiscard]] Terms found(const Terms& terms) const { return intentsFound(extension_, terms); }

  platform::AppIntentsExtension extension_ = ExpenseIntentsExtension::make();
};

TEST_F(ASearch, FindsAnIntentByEachOfItsPhrases) {
  for (const auto& shortcut : extension_.appShortcuts()) {
    for (const auto& phrase : shortcut.phrases) {
      Terms terms;
      std::istringstream said(phrase.said("Kivo"));
      for (std::string word; said >> word;) terms.push_back(word);
      EXPECT_THAT(found(terms), ElementsAre(shortcut.intent->typeName())) << phrase.words;
    }
  }
}

TEST_F(ASearch, FindsAnIntentByPrefixesOfWords) {
  EXPECT_THAT(found({"Add"}), ElementsAre("AddExpenseIntent"));
  EXPECT_THAT(found({"add", "ex"}), ElementsAre("AddExpenseIntent"));
  EXPECT_THAT(found({"Add", "expense", "in", "K"}), ElementsAre("AddExpenseIntent"));
  EXPECT_THAT(found({"proc"}), ElementsAre("ProcessSMSIntent"));
  EXPECT_THAT(found({"sm"}), ElementsAre("ProcessSMSIntent"));
  EXPECT_THAT(found({"dd"}), IsEmpty()) << "in the middle of a word";
  EXPECT_THAT(found({"adding"}), IsEmpty()) << "longer than the word";
}

TEST_F(ASearch, IgnoresLetterCaseAndOrder) {
  EXPECT_THAT(found({"KIVO", "EXPENSE", "aDD"}), ElementsAre("AddExpenseIntent"));
  EXPECT_THAT(found({"kivo", "bank"}), ElementsAre("ProcessSMSIntent"));
}

TEST_F(ASearch, FindsSeveralIntentsInOrder) {
  EXPECT_THAT(found({"kivo"}), ElementsAre("AddExpenseIntent", "ProcessSMSIntent"));
  EXPECT_THAT(found({"track"}), ElementsAre("AddExpenseIntent", "ProcessSMSIntent"));
  EXPECT_THAT(found({"expense"}), ElementsAre("AddExpenseIntent", "ProcessSMSIntent"));
}

TEST_F(ASearch, NeedsAllTermsInOnePhrase) {
  EXPECT_THAT(found({"add", "purchase"}), IsEmpty());
  EXPECT_THAT(found({"add", "sms"}), IsEmpty());
  EXPECT_THAT(found({"kivo", "weather"}), IsEmpty());
}

TEST_F(ASearch, IgnoresPunctuationAndBlanks) {
  EXPECT_THAT(found({"add", "expense", "in", "Kivo!"}), ElementsAre("AddExpenseIntent"));
  EXPECT_THAT(found({" add  expense ", ""}), ElementsAre("AddExpenseIntent"));
}

TEST_F(ASearch, FindsNothingWithoutATerm) {
  EXPECT_THAT(found({}), IsEmpty());
  EXPECT_THAT(found({""}), IsEmpty());
  EXPECT_THAT(found({" ", "?!"}), IsEmpty());
}

TEST_F(ASearch, HandlesInvalidAndVeryLongTerms) {
  EXPECT_THAT(found({"مصروف"}), IsEmpty());
  EXPECT_THAT(found({"\xff\xfe"}), IsEmpty());
  EXPECT_THAT(found({std::string(100000, 'a')}), IsEmpty());
  EXPECT_THAT(found(Terms(10000, "a")), ElementsAre("AddExpenseIntent"));
}

TEST_F(ASearch, ShowsTitlePhraseAndIconsAsDeclared) {
  const auto shown = shownShortcut(extension_, "AddExpenseIntent");
  ASSERT_TRUE(shown);
  EXPECT_EQ(shown->title, "Add Expense");
  EXPECT_EQ(shown->description, "Add expense in Kivo");
  EXPECT_THAT(shown->icons,
              ElementsAre("app.kivo.expenses.dollarsign.circle", "app.kivo.expenses"));
  EXPECT_EQ(shownShortcut(extension_, "ProcessSMSIntent")->title, "Process Bank SMS");
  EXPECT_FALSE(shownShortcut(extension_, "addexpenseintent"));
  EXPECT_FALSE(shownShortcut(extension_, ""));
}

TEST_F(ASearch, HidesAnIntentThatIsNotDiscoverable) {
  extension_ = testkit::ExtensionWithRating::make();
  ASSERT_THAT(found({"shop"}), IsEmpty());
  EXPECT_FALSE(shownShortcut(extension_, "RateMerchantIntent"));
}

}  // namespace
}  // namespace kivo::linux_platform
