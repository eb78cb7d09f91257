// What an intent is to the system that offers and performs it. Performs none by itself.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/app_intents/intent_dialog.h"
#include "platform/app_intents/intent_parameter.h"
#include "platform/concurrency/task.h"

namespace kivo::platform {

/// An action that the automation and voice layers can run. An instance is made for one run; the
/// system fills its parameters, then performs it.
class AppIntent {
 public:
  virtual ~AppIntent() = default;

  /// The intent's type name, by which callers name it: "ProcessSMSIntent".
  [[nodiscard]] virtual std::string_view typeName() const = 0;
  /// What a person reads: "Process Bank SMS".
  [[nodiscard]] virtual std::string_view title() const = 0;
  /// The parameters, in the order in which they are asked for. They live in the intent.
  virtual std::vector<AnyIntentParameter*> parameters() = 0;
  /// Does the intent's work; the intent must outlive the task. Never throws: every outcome is a
  /// result with a dialog. Runs on the platform's executor, never on the main thread.
  virtual Task<IntentResult> perform() = 0;
};

/// An extension as the system loads it: the intents that it offers, each made anew for each run.
struct AppIntentsExtension {
  std::vector<std::function<std::unique_ptr<AppIntent>()>> intents;
};

}  // namespace kivo::platform
