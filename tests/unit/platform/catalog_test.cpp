#include "platform/linux/app_intents/catalog.h"

#include <gmock/gmock.h>

#include "intents/expense_intents_extension.h"
#include "testkit/rate_merchant_intent.h"

namespace kivo::linux_platform {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST(TheCatalog, ListsIntentsParametersAndPhrases) {
  EXPECT_EQ(catalogText(ExpenseIntentsExtension::make()),
            R"(AddExpenseIntent - Add Expense
  --amount    double  Amount    Transaction amount
  --merchant  string  Merchant  Merchant name or description
  "Add expense in Kivo"
  "Log expense to Kivo"
  "Track purchase with Kivo"
  "Record expense in Kivo"

ProcessSMSIntent - Process Bank SMS
  --smsText   string  SMS Text  The bank SMS message text
  "Process bank SMS in Kivo"
  "Extract expense from SMS in Kivo"
  "Track SMS transaction in Kivo")");
}

TEST(TheCatalog, ListsAnIntentWithLongNames) {
  EXPECT_THAT(catalogText(testkit::ExtensionWithRating::make()), EndsWith(R"(

RateMerchantIntent - Rate Merchant
  --merchant  string  Merchant  Who is rated
  --stars     double  Stars     How good it was
  --remarkToKeep  string  Remark to keep  What else there is to say
  "Rate a shop in Kivo")"));
}

TEST(TheCatalog, IsEmptyWithoutIntents) {
  const platform::AppIntentsExtension nothing{
      .applicationName = "Kivo", .bundleIdentifier = "b", .intents = {}, .appShortcuts = [] {
        return std::vector<platform::AppShortcut>();
      }};
  EXPECT_EQ(catalogText(nothing), "");
  EXPECT_EQ(catalogJSON(nothing),
            R"({"applicationName":"Kivo","bundleIdentifier":"b","intents":[],"appShortcuts":[],)"
            R"("shortcutTileColor":"default"})");
}

TEST(TheCatalogAsJSON, HasDeclaredAndDefaultValues) {
  const std::string json = catalogJSON(ExpenseIntentsExtension::make());
  EXPECT_THAT(json, StartsWith(R"({"applicationName":"Kivo",)"
                               R"("bundleIdentifier":"app.kivo.expenses.intents",)"));
  EXPECT_THAT(json,
              HasSubstr(R"({"type":"AddExpenseIntent","title":"Add Expense","description":null,)"
                        R"("openAppWhenRun":false,"supportedModes":"background",)"
                        R"("authenticationPolicy":"alwaysAllowed","isDiscoverable":true,)"
                        R"("parameterSummary":null,"persistentIdentifier":"AddExpenseIntent",)"
                        R"("parameters":[{"name":"amount","title":"Amount",)"
                        R"("description":"Transaction amount","type":"double","required":true,)"
                        R"("default":null,"controlStyle":"stepper","inclusiveRange":null,)"
                        R"("inputOptions":null,"requestValueDialog":null,)"
                        R"("inputConnectionBehavior":"default"})"));
  EXPECT_THAT(json, HasSubstr(R"({"intent":"ProcessSMSIntent","shortTitle":"Process Bank SMS",)"
                              R"("systemImageName":"message.fill",)"
                              R"("phrases":["Process bank SMS in Kivo",)"));
  EXPECT_THAT(json, Not(HasSubstr("\n")));
}

TEST(TheCatalogAsJSON, HasEverySettingThatAnIntentDeclares) {
  const std::string json = catalogJSON(testkit::ExtensionWithRating::make());
  EXPECT_THAT(json, HasSubstr(R"({"type":"RateMerchantIntent","title":"Rate Merchant",)"
                              R"("description":"Keeps an opinion","openAppWhenRun":false,)"
                              R"("supportedModes":"background",)"
                              R"("authenticationPolicy":"requiresAuthentication",)"
                              R"("isDiscoverable":false,"parameterSummary":null,)"
                              R"("persistentIdentifier":"RateShopIntent")"));
  EXPECT_THAT(json, HasSubstr(R"("type":"double","required":true,"default":null,)"
                              R"("controlStyle":"slider",)"
                              R"("inclusiveRange":{"minimum":1.0,"maximum":5.0},)"
                              R"("inputOptions":null,"requestValueDialog":"How many stars?",)"
                              R"("inputConnectionBehavior":"never"})"));
  EXPECT_THAT(json, HasSubstr(R"("type":"string","required":false,"default":"no remark",)"
                              R"("controlStyle":null,"inclusiveRange":null,)"
                              R"("inputOptions":"multiline",)"));
  EXPECT_THAT(json, HasSubstr(R"({"intent":"RateMerchantIntent","shortTitle":"Rate Merchant",)"
                              R"("systemImageName":"star.fill",)"
                              R"("phrases":["Rate a shop in Kivo"]})"));
}

}  // namespace
}  // namespace kivo::linux_platform
