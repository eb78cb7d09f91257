// The main function of an extension with more intents than kivo-intents.
#include <unistd.h>

#include "testkit/rate_merchant_intent.h"

namespace kivo {
namespace {

/// Answers whether it runs on the main thread, whose id is that of the process.
class TellThreadIntent : public platform::AppIntent {
 public:
  [[nodiscard]] std::string_view typeName() const override { return "TellThreadIntent"; }
  [[nodiscard]] const platform::LocalizedStringResource& title() const override {
    static const platform::LocalizedStringResource made{"Tell Thread"};
    return made;
  }
  [[nodiscard]] bool openAppWhenRun() const override { return false; }
  std::vector<platform::AnyIntentParameter*> parameters() override { return {}; }
  platform::Task<platform::IntentResult> perform() override {
    co_return platform::IntentResult{{gettid() == getpid() ? "main thread" : "worker"}};
  }
};

struct ThirdIntentExtension : platform::AppExtension<ThirdIntentExtension> {
  static platform::AppIntentsExtension make() {
    auto extension = testkit::ExtensionWithRating::make();
    extension.intents.emplace_back([] { return std::make_unique<TellThreadIntent>(); });
    return extension;
  }
};

}  // namespace
}  // namespace kivo

int main(int argc, char** argv) { return kivo::ThirdIntentExtension::main(argc, argv); }
