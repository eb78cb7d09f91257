// A value that an intent needs before it is performed. Does not ask for it.
#pragma once

#include <string>
#include <string_view>

namespace kivo::platform {

/// What the system knows of a parameter without knowing its type.
class AnyIntentParameter {
 public:
  AnyIntentParameter(std::string_view name, std::string_view title, std::string_view description)
      : name_(name), title_(title), description_(description) {}
  virtual ~AnyIntentParameter() = default;

  /// The name that callers use, such as "smsText".
  [[nodiscard]] std::string_view name() const { return name_; }
  /// What a person is asked for, such as "SMS Text".
  [[nodiscard]] std::string_view title() const { return title_; }
  [[nodiscard]] std::string_view description() const { return description_; }

  /// Takes the value from `text`, as typed or piped (any bytes). False when it does not fit.
  virtual bool setFromText(std::string text) = 0;

 private:
  std::string_view name_;
  std::string_view title_;
  std::string_view description_;
};

/// A required value of type `Value`, without default and without a dialog of its own to ask for it.
template <typename Value>
class IntentParameter;

template <>
class IntentParameter<std::string> : public AnyIntentParameter {
 public:
  using AnyIntentParameter::AnyIntentParameter;

  /// The text as received, repaired where it is not valid UTF-8. The system fills a parameter
  /// before it performs the intent; until then the text is empty.
  [[nodiscard]] const std::string& value() const { return value_; }
  bool setFromText(std::string text) override;

 private:
  std::string value_;
};

}  // namespace kivo::platform
