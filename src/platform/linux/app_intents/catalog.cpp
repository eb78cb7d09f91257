#include "platform/linux/app_intents/catalog.h"

#include <optional>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/foundation/json_encoder.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo::linux_platform {
namespace {

using platform::AnyIntentParameter;
using platform::AppIntent;
using platform::AppIntentsExtension;
using platform::AppShortcut;
using platform::JSONEncoder;
using platform::LocalizedStringResource;
using ValueType = AnyIntentParameter::ValueType;

std::string_view nameOf(ValueType type) { return type == ValueType::text ? "string" : "double"; }

std::string_view nameOf(platform::ControlStyle style) {
  switch (style) {
    case platform::ControlStyle::field:
      return "field";
    case platform::ControlStyle::slider:
      return "slider";
    case platform::ControlStyle::stepper:
      return "stepper";
  }
  return "field";
}

std::string_view nameOf(platform::StringInputOptions) { return "multiline"; }

std::string_view nameOf(platform::InputConnectionBehavior behavior) {
  return behavior == platform::InputConnectionBehavior::standard ? "default" : "never";
}

std::string_view nameOf(platform::IntentModes modes) {
  return modes == platform::IntentModes::background ? "background" : "foreground";
}

std::string_view nameOf(platform::IntentAuthenticationPolicy policy) {
  return policy == platform::IntentAuthenticationPolicy::alwaysAllowed ? "alwaysAllowed"
                                                                       : "requiresAuthentication";
}

std::string_view nameOf(platform::ShortcutTileColor) { return "default"; }
std::string_view nameOf(const LocalizedStringResource& resource) { return resource.key; }
std::string_view nameOf(const platform::IntentDialog& dialog) { return dialog.text; }

template <typename Value>
void encodeNameOrNull(JSONEncoder& object, std::string_view key,
                      const std::optional<Value>& value) {
  if (value) {
    object.encodeString(key, nameOf(*value));
  } else {
    object.encodeNull(key);
  }
}

void encodeDefault(JSONEncoder& object, const std::optional<platform::IntentValue>& value) {
  if (!value) {
    object.encodeNull("default");
  } else if (const auto* const number = std::get_if<double>(&*value)) {
    object.encodeDouble("default", *number);
  } else {
    object.encodeString("default", std::get<std::string>(*value));
  }
}

JSONEncoder encoded(const AnyIntentParameter& parameter) {
  const auto& settings = parameter.settings();
  JSONEncoder object;
  object.encodeString("name", settings.name);
  object.encodeString("title", settings.title.key);
  object.encodeString("description", settings.description.key);
  object.encodeString("type", nameOf(parameter.valueType()));
  object.encodeBool("required", !parameter.defaultValue());
  encodeDefault(object, parameter.defaultValue());
  encodeNameOrNull(object, "controlStyle", settings.controlStyle);
  if (const auto& range = settings.inclusiveRange) {
    JSONEncoder limits;
    limits.encodeDouble("minimum", range->first);
    limits.encodeDouble("maximum", range->second);
    object.encodeObject("inclusiveRange", std::move(limits));
  } else {
    object.encodeNull("inclusiveRange");
  }
  encodeNameOrNull(object, "inputOptions", settings.inputOptions);
  encodeNameOrNull(object, "requestValueDialog", settings.requestValueDialog);
  object.encodeString("inputConnectionBehavior", nameOf(settings.inputConnectionBehavior));
  return object;
}

JSONEncoder encoded(AppIntent& intent) {
  const platform::IntentMetadata metadata = intent.metadata();
  std::vector<JSONEncoder> parameters;
  for (const AnyIntentParameter* const parameter : intent.parameters()) {
    parameters.push_back(encoded(*parameter));
  }
  JSONEncoder object;
  object.encodeString("type", intent.typeName());
  object.encodeString("title", intent.title().key);
  encodeNameOrNull(object, "description", metadata.description);
  object.encodeBool("openAppWhenRun", intent.openAppWhenRun());
  object.encodeString("supportedModes", nameOf(metadata.supportedModes));
  object.encodeString("authenticationPolicy", nameOf(metadata.authenticationPolicy));
  object.encodeBool("isDiscoverable", metadata.isDiscoverable);
  encodeNameOrNull(object, "parameterSummary", metadata.parameterSummary);
  object.encodeString("persistentIdentifier",
                      metadata.persistentIdentifier.value_or(intent.typeName()));
  object.encodeObjects("parameters", parameters);
  return object;
}

JSONEncoder encoded(const AppShortcut& shortcut, std::string_view applicationName) {
  std::vector<std::string> phrases;
  for (const auto& phrase : shortcut.phrases) phrases.push_back(phrase.said(applicationName));
  JSONEncoder object;
  object.encodeString("intent", shortcut.intent->typeName());
  object.encodeString("shortTitle", shortcut.shortTitle.key);
  object.encodeString("systemImageName", shortcut.systemImageName);
  object.encodeStrings("phrases", phrases);
  return object;
}

std::string described(AppIntent& intent) {
  std::string text =
      std::string(intent.typeName()) + " - " + std::string(intent.title().key) + "\n";
  for (const AnyIntentParameter* const parameter : intent.parameters()) {
    const auto& settings = parameter->settings();
    text += "  --" + paddedTo(8, settings.name) + "  " +
            paddedTo(6, nameOf(parameter->valueType())) + "  " + paddedTo(8, settings.title.key) +
            "  " + std::string(settings.description.key) + "\n";
  }
  return text;
}

}  // namespace

std::string catalogText(const AppIntentsExtension& extension) {
  const std::vector<AppShortcut> shortcuts = extension.appShortcuts();
  std::string text;
  for (const auto& make : extension.intents) {
    const auto intent = make();
    if (!text.empty()) text += "\n";
    text += described(*intent);
    for (const AppShortcut& shortcut : shortcuts) {
      if (shortcut.intent->typeName() != intent->typeName()) continue;
      for (const auto& phrase : shortcut.phrases) {
        text += "  \"" + phrase.said(extension.applicationName) + "\"\n";
      }
    }
  }
  if (!text.empty()) text.pop_back();
  return text;
}

std::string catalogJSON(const AppIntentsExtension& extension) {
  std::vector<JSONEncoder> intents;
  for (const auto& make : extension.intents) intents.push_back(encoded(*make()));
  std::vector<JSONEncoder> shortcuts;
  for (const AppShortcut& shortcut : extension.appShortcuts()) {
    shortcuts.push_back(encoded(shortcut, extension.applicationName));
  }
  JSONEncoder object;
  object.encodeString("applicationName", extension.applicationName);
  object.encodeString("bundleIdentifier", extension.bundleIdentifier);
  object.encodeObjects("intents", intents);
  object.encodeObjects("appShortcuts", shortcuts);
  object.encodeString("shortcutTileColor", nameOf(extension.shortcutTileColor));
  return object.text();
}

}  // namespace kivo::linux_platform
