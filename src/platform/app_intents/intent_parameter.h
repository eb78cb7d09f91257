// A value that an intent needs before it is performed. Does not ask for it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "platform/app_intents/intent_dialog.h"
#include "platform/app_intents/localized_string_resource.h"

namespace kivo::platform {

/// A value as a caller hands it over: a text of any bytes, or a number.
using IntentValue = std::variant<std::string, double>;

/// How a form shows a number.
enum class ControlStyle { field, slider, stepper };

/// What keyboard a form offers for a text.
enum class StringInputOptions { multiline };

/// Whether a value may come from the output of the action before.
enum class InputConnectionBehavior { standard, never };

/// What a parameter is to the system. What is not set is the framework's default.
struct IntentParameterSettings {
  /// The name that callers use, such as "smsText".
  std::string_view name;
  /// What a person is asked for, such as "SMS Text".
  LocalizedStringResource title;
  LocalizedStringResource description;
  std::optional<ControlStyle> controlStyle = std::nullopt;
  /// The smallest and the largest number that fit, both finite.
  std::optional<std::pair<double, double>> inclusiveRange = std::nullopt;
  std::optional<StringInputOptions> inputOptions = std::nullopt;
  /// The words in which a person is asked for the value, in place of the title.
  std::optional<IntentDialog> requestValueDialog = std::nullopt;
  InputConnectionBehavior inputConnectionBehavior = InputConnectionBehavior::standard;
};

/// What the system knows of a parameter without knowing its type.
class AnyIntentParameter {
 public:
  enum class ValueType { text, number };

  virtual ~AnyIntentParameter() = default;

  [[nodiscard]] const IntentParameterSettings& settings() const { return settings_; }
  [[nodiscard]] virtual ValueType valueType() const = 0;
  /// The value that is used when none is given; none for a value that must be given.
  [[nodiscard]] virtual std::optional<IntentValue> defaultValue() const = 0;
  [[nodiscard]] virtual bool hasValue() const = 0;

  /// Takes `value`; false, with nothing changed, when it is of another type or does not fit.
  virtual bool set(IntentValue value) = 0;
  /// Takes the value that `text` spells, as typed or piped.
  virtual bool setFromText(std::string text) = 0;

 protected:
  explicit AnyIntentParameter(IntentParameterSettings settings) : settings_(std::move(settings)) {}

 private:
  IntentParameterSettings settings_;
};

/// A parameter of type `Value`: std::string or double. Required, unless made with a default.
template <typename Value>
class IntentParameter : public AnyIntentParameter {
 public:
  explicit IntentParameter(IntentParameterSettings settings,
                           std::optional<Value> defaultValue = std::nullopt)
      : AnyIntentParameter(std::move(settings)), default_(defaultValue), value_(defaultValue) {}

  /// The value; the system has filled it before it performs the intent. From a caller
  /// a text is as received, repaired where it is not valid UTF-8, and a number is finite and within
  /// the range.
  [[nodiscard]] const Value& value() const { return value_.value(); }

  [[nodiscard]] ValueType valueType() const override;
  [[nodiscard]] std::optional<IntentValue> defaultValue() const override {
    if (!default_) return std::nullopt;
    return *default_;
  }
  [[nodiscard]] bool hasValue() const override { return value_.has_value(); }
  bool set(IntentValue value) override;
  bool setFromText(std::string text) override;
  /// Takes `value` as it is, unjudged, as code does that makes an intent itself.
  void assign(Value value) { value_ = std::move(value); }

 private:
  std::optional<Value> default_;
  std::optional<Value> value_;
};

}  // namespace kivo::platform
