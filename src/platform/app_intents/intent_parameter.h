// A parameter of an intent: its declaration and its value.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "platform/app_intents/intent_dialog.h"
#include "platform/app_intents/localized_string_resource.h"

namespace kivo::platform {

/// A value from a caller: a text of any bytes, or a number.
using IntentValue = std::variant<std::string, double>;

/// The control for a number in a form.
enum class ControlStyle { field, slider, stepper };

/// The keyboard for a text in a form.
enum class StringInputOptions { multiline };

/// Whether the output of the previous action may be used as the value.
enum class InputConnectionBehavior { standard, never };

/// The declaration of a parameter. Unset properties have the framework's default.
struct IntentParameterSettings {
  /// The name that callers use, such as "smsText".
  std::string_view name;
  /// The label shown to the user, such as "SMS Text".
  LocalizedStringResource title;
  LocalizedStringResource description;
  std::optional<ControlStyle> controlStyle = std::nullopt;
  /// The smallest and the largest number that are accepted, both finite.
  std::optional<std::pair<double, double>> inclusiveRange = std::nullopt;
  std::optional<StringInputOptions> inputOptions = std::nullopt;
  /// The question that asks the user for the value, instead of the title.
  std::optional<IntentDialog> requestValueDialog = std::nullopt;
  InputConnectionBehavior inputConnectionBehavior = InputConnectionBehavior::standard;
};

/// A parameter of any type.
class AnyIntentParameter {
 public:
  enum class ValueType { text, number };

  virtual ~AnyIntentParameter() = default;

  [[nodiscard]] const IntentParameterSettings& settings() const { return settings_; }
  [[nodiscard]] virtual ValueType valueType() const = 0;
  /// The value used when the caller gives none; nullopt when the parameter is required.
  [[nodiscard]] virtual std::optional<IntentValue> defaultValue() const = 0;
  [[nodiscard]] virtual bool hasValue() const = 0;

  /// Sets the value. Returns false, with nothing changed, when `value` has another type or is out
  /// of range.
  virtual bool set(IntentValue value) = 0;
  /// Parses and sets the value from a typed or piped text. Returns false, with nothing changed,
  /// when it does not fit.
  virtual bool setFromText(std::string text) = 0;

 protected:
  explicit AnyIntentParameter(IntentParameterSettings settings) : settings_(std::move(settings)) {}

 private:
  IntentParameterSettings settings_;
};

/// A parameter of type `Value`: std::string or double. Required unless it has a default value.
template <typename Value>
class IntentParameter : public AnyIntentParameter {
 public:
  explicit IntentParameter(IntentParameterSettings settings,
                           std::optional<Value> defaultValue = std::nullopt)
      : AnyIntentParameter(std::move(settings)), default_(defaultValue), value_(defaultValue) {}

  /// Returns the value, which the system sets before it performs the intent. A text from a caller
  /// is as received, except that invalid UTF-8 is repaired; a number is finite and within the
  /// range. Throws std::bad_optional_access when there is no value.
  [[nodiscard]] const Value& value() const { return value_.value(); }

  [[nodiscard]] ValueType valueType() const override;
  [[nodiscard]] std::optional<IntentValue> defaultValue() const override {
    if (!default_) return std::nullopt;
    return *default_;
  }
  [[nodiscard]] bool hasValue() const override { return value_.has_value(); }
  bool set(IntentValue value) override;
  bool setFromText(std::string text) override;
  /// Sets `value` without validation, for code that creates an intent itself.
  void assign(Value value) { value_ = std::move(value); }

 private:
  std::optional<Value> default_;
  std::optional<Value> value_;
};

}  // namespace kivo::platform
