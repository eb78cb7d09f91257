// The interface of an intent, an action that the system offers and runs.
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

/// Whether a locked phone must be unlocked before an intent runs.
enum class IntentAuthenticationPolicy { alwaysAllowed, requiresAuthentication };

/// Optional properties of an intent. Unset ones have the framework's default.
struct IntentMetadata {
  std::optional<LocalizedStringResource> description = std::nullopt;
  IntentModes supportedModes = IntentModes::background;
  IntentAuthenticationPolicy authenticationPolicy = IntentAuthenticationPolicy::alwaysAllowed;
  /// Whether search and suggestions may offer the intent.
  bool isDiscoverable = true;
  /// One sentence that shows the parameters' values.
  std::optional<LocalizedStringResource> parameterSummary = std::nullopt;
  /// The identifier by which saved automations refer to the intent; nullopt for its type name.
  std::optional<std::string_view> persistentIdentifier = std::nullopt;
};

/// An action that the automation and voice layers can run. An instance is created for one run: the
/// system fills its parameters, then calls `perform`.
class AppIntent {
 public:
  virtual ~AppIntent() = default;

  /// The type name that callers use, such as "ProcessSMSIntent".
  [[nodiscard]] virtual std::string_view typeName() const = 0;
  /// The title shown to the user, such as "Process Bank SMS". Returns the same object each time.
  [[nodiscard]] virtual const LocalizedStringResource& title() const = 0;
  /// Whether a run brings the main app to the front.
  [[nodiscard]] virtual bool openAppWhenRun() const = 0;
  [[nodiscard]] virtual IntentMetadata metadata() const { return {}; }
  /// The parameters, in the order in which the user is asked for them. Owned by the intent.
  virtual std::vector<AnyIntentParameter*> parameters() = 0;
  /// Performs the intent, which must outlive the task. Never throws: every outcome is a result with
  /// a dialog. Runs on a worker of the platform's executor, never on the main thread.
  virtual Task<IntentResult> perform() = 0;
};

/// Returns the parameter `name` of `intent`; null when it has no such parameter.
inline AnyIntentParameter* parameterNamed(AppIntent& intent, std::string_view name) {
  for (AnyIntentParameter* const parameter : intent.parameters()) {
    if (parameter->settings().name == name) return parameter;
  }
  return nullptr;
}

}  // namespace kivo::platform
