// What an intent is to the system that offers and performs it. Performs none by itself.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "platform/app_intents/intent_dialog.h"
#include "platform/app_intents/intent_parameter.h"
#include "platform/app_intents/localized_string_resource.h"
#include "platform/concurrency/task.h"

namespace kivo::platform {

/// Where an intent can run.
enum class IntentModes { background, foreground };

/// What a locked phone asks for before an intent runs.
enum class IntentAuthenticationPolicy { alwaysAllowed, requiresAuthentication };

/// What else the system knows of an intent. What is not set is the framework's default.
struct IntentMetadata {
  std::optional<LocalizedStringResource> description = std::nullopt;
  IntentModes supportedModes = IntentModes::background;
  IntentAuthenticationPolicy authenticationPolicy = IntentAuthenticationPolicy::alwaysAllowed;
  /// Whether search and suggestions may offer the intent.
  bool isDiscoverable = true;
  /// One sentence that shows the parameters' values.
  std::optional<LocalizedStringResource> parameterSummary = std::nullopt;
  /// By which saved automations find the intent again; none for its type name.
  std::optional<std::string_view> persistentIdentifier = std::nullopt;
};

/// An action that the automation and voice layers can run. An instance is made for one run; the
/// system fills its parameters, then performs it.
class AppIntent {
 public:
  virtual ~AppIntent() = default;

  /// The intent's type name, by which callers name it: "ProcessSMSIntent".
  [[nodiscard]] virtual std::string_view typeName() const = 0;
  /// What a person reads: "Process Bank SMS". Made once, then the same object each time.
  [[nodiscard]] virtual const LocalizedStringResource& title() const = 0;
  /// Whether the main app comes to the front for a run.
  [[nodiscard]] virtual bool openAppWhenRun() const = 0;
  [[nodiscard]] virtual IntentMetadata metadata() const { return {}; }
  /// The parameters, in the order in which they are asked for. They live in the intent.
  virtual std::vector<AnyIntentParameter*> parameters() = 0;
  /// Does the intent's work; the intent must outlive the task. Never throws: every outcome is a
  /// result with a dialog. Runs on the platform's executor, never on the main thread.
  virtual Task<IntentResult> perform() = 0;
};

/// The parameter of `intent` that callers name `name`; null when there is none.
AnyIntentParameter* parameterNamed(AppIntent& intent, std::string_view name);

}  // namespace kivo::platform
