// An intent that the extension does not have, for tests that an additional intent needs one class
// and one line of registration.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "intents/expense_intents_extension.h"
#include "platform/app_intents/app_intent.h"
#include "platform/foundation/number_text.h"

namespace kivo::testkit {

/// Answers its parameters. Uses every setting of a parameter, and shares a parameter name with
/// another intent.
class RateMerchantIntent : public platform::AppIntent {
 public:
  platform::IntentParameter<std::string> merchant{
      {.name = "merchant", .title = {"Merchant"}, .description = {"Who is rated"}}};
  platform::IntentParameter<double> stars{
      {.name = "stars",
       .title = {"Stars"},
       .description = {"How good it was"},
       .controlStyle = platform::ControlStyle::slider,
       .inclusiveRange = std::pair{1.0, 5.0},
       .requestValueDialog = platform::IntentDialog{"How many stars?"},
       .inputConnectionBehavior = platform::InputConnectionBehavior::never}};
  platform::IntentParameter<std::string> remarkToKeep{
      {.name = "remarkToKeep",
       .title = {"Remark to keep"},
       .description = {"What else there is to say"},
       .inputOptions = platform::StringInputOptions::multiline},
      "no remark"};

  [[nodiscard]] std::string_view typeName() const override { return "RateMerchantIntent"; }
  [[nodiscard]] const platform::LocalizedStringResource& title() const override {
    static const platform::LocalizedStringResource made{"Rate Merchant"};
    return made;
  }
  [[nodiscard]] bool openAppWhenRun() const override { return false; }
  [[nodiscard]] platform::IntentMetadata metadata() const override {
    return {.description = platform::LocalizedStringResource{"Keeps an opinion"},
            .authenticationPolicy = platform::IntentAuthenticationPolicy::requiresAuthentication,
            .isDiscoverable = false,
            .persistentIdentifier = "RateShopIntent"};
  }
  std::vector<platform::AnyIntentParameter*> parameters() override {
    return {&merchant, &stars, &remarkToKeep};
  }
  platform::Task<platform::IntentResult> perform() override {
    co_return platform::IntentResult{{merchant.value() + ": " +
                                      platform::doubleText(stars.value()) + ", " +
                                      remarkToKeep.value()}};
  }
};

/// The shortcuts of the extension and one for this intent.
inline std::vector<platform::AppShortcut> shortcutsWithRating() {
  auto shortcuts = ExpenseIntentsExtension::make().appShortcuts();
  shortcuts.push_back({.intent = std::make_unique<RateMerchantIntent>(),
                       .phrases = {{"Rate a shop in "}},
                       .shortTitle = {"Rate Merchant"},
                       .systemImageName = "star.fill"});
  return shortcuts;
}

/// The extension with a third intent.
struct ExtensionWithRating : platform::AppExtension<ExtensionWithRating> {
  static platform::AppIntentsExtension make() {
    auto extension = ExpenseIntentsExtension::make();
    extension.intents.emplace_back([] { return std::make_unique<RateMerchantIntent>(); });
    extension.appShortcuts = &shortcutsWithRating;
    return extension;
  }
};

}  // namespace kivo::testkit
