// Property: a D-Bus call is refused for the first of the four reasons that applies, with a message
// that does not depend on the caller's texts; otherwise the intent has exactly the values of the
// call.
#include <cmath>
#include <cstddef>
#include <cstring>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <variant>

#include <fuzzer/FuzzedDataProvider.h>

#include "intents/add_expense_intent.h"
#include "intents/expense_intents_extension.h"
#include "intents/process_sms_intent.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/app_intents/called_intent.h"
#include "platform/linux/bus/bus_refusal.h"
#include "platform/linux/bus/intents_interface.h"
#include "property.h"

namespace {

using namespace kivo;
using linux_platform::BusRefusal;
using linux_platform::CalledValues;
using platform::IntentValue;
namespace wire = linux_platform::intents_interface;

struct Call {
  std::string type;
  CalledValues values;
};

// Usually one of `likely`, otherwise any text.
std::string name(FuzzedDataProvider& input, std::initializer_list<const char*> likely) {
  const auto which = input.ConsumeIntegralInRange<std::size_t>(0, likely.size());
  return which < likely.size() ? std::string(likely.begin()[which])
                               : input.ConsumeRandomLengthString(24);
}

std::optional<IntentValue> value(FuzzedDataProvider& input) {
  switch (input.ConsumeIntegralInRange(0, 4)) {
    case 0:
    case 1:
      return input.ConsumeRandomLengthString(200);
    case 2:
      return input.ConsumeFloatingPoint<double>();
    case 3:
      return input.PickValueInArray({0.0, -0.0, HUGE_VAL, -HUGE_VAL, std::nan(""), 1e308, 12.5});
    default:
      return std::nullopt;
  }
}

Call call(FuzzedDataProvider& input) {
  Call made{.type = name(input, {"ProcessSMSIntent", "AddExpenseIntent"}), .values = {}};
  const int count = input.ConsumeIntegralInRange(0, 4);
  for (int i = 0; i < count; ++i) {
    const std::string parameter = name(input, {"smsText", "amount", "merchant"});
    made.values[parameter] = value(input);
  }
  return made;
}

bool fitsText(const std::optional<IntentValue>& given) {
  return given && std::holds_alternative<std::string>(*given);
}

bool fitsNumber(const std::optional<IntentValue>& given) {
  return given && std::holds_alternative<double>(*given) && std::isfinite(std::get<double>(*given));
}

// Returns the expected error of the call; null when it is valid.
const char* expectedRefusal(const Call& call) {
  std::set<std::string> missing;
  if (call.type == "ProcessSMSIntent") {
    missing = {"smsText"};
  } else if (call.type == "AddExpenseIntent") {
    missing = {"amount", "merchant"};
  } else {
    return wire::unknownIntent;
  }
  const std::set<std::string> known = missing;
  bool allFit = true;
  for (const auto& [parameter, given] : call.values) {
    if (!known.contains(parameter)) return wire::unknownParameter;
    allFit = allFit && (parameter == "amount" ? fitsNumber(given) : fitsText(given));
    missing.erase(parameter);
  }
  if (!allFit) return wire::invalidParameter;
  return missing.empty() ? nullptr : wire::missingParameter;
}

// The same call with other texts in it.
Call withOtherTexts(Call call) {
  if (expectedRefusal(call) == wire::unknownIntent) call.type = "another";
  CalledValues values;
  for (auto& [parameter, given] : call.values) {
    if (fitsText(given)) given = IntentValue("other");
    const bool known = parameter == "smsText" || parameter == "amount" || parameter == "merchant";
    values[known ? parameter : "other"] = std::move(given);
  }
  return {.type = std::move(call.type), .values = std::move(values)};
}

// The intent of `call`, or the refusal.
std::variant<std::unique_ptr<platform::AppIntent>, BusRefusal> outcomeOf(const Call& call) {
  static const auto extension = ExpenseIntentsExtension::make();
  try {
    return linux_platform::calledIntent(extension, call.type, call.values);
  } catch (const BusRefusal& refusal) {
    return refusal;
  }
}

void requireSecretive(const BusRefusal& refusal, const Call& call) {
  const std::string words = refusal.what();
  fuzz::require(words.find('\n') == std::string::npos, "a refusal is one line");
  const auto again = outcomeOf(withOtherTexts(call));
  const auto* const same = std::get_if<BusRefusal>(&again);
  fuzz::require(same != nullptr && same->what() == words,
                "no text of the caller changes the words of a refusal");
}

void requireValues(platform::AppIntent& intent, const Call& call) {
  const auto text = [&](const char* parameter) {
    return platform::repairedUtf8(std::get<std::string>(*call.values.at(parameter)));
  };
  if (auto* const sms = dynamic_cast<ProcessSMSIntent*>(&intent)) {
    fuzz::require(sms->smsText.value() == text("smsText"), "the text is the one of the call");
    return;
  }
  auto& expense = dynamic_cast<AddExpenseIntent&>(intent);
  const double amount = std::get<double>(*call.values.at("amount"));
  fuzz::require(std::memcmp(&expense.amount.value(), &amount, sizeof amount) == 0,
                "the amount is the one of the call");
  fuzz::require(expense.merchant.value() == text("merchant"),
                "the merchant is the one of the call");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const Call made = call(input);
  const auto called = outcomeOf(made);
  const char* const expected = expectedRefusal(made);

  if (const auto* const refusal = std::get_if<BusRefusal>(&called)) {
    fuzz::require(expected != nullptr && std::strcmp(refusal->name(), expected) == 0,
                  "a call is refused for the first reason that applies");
    requireSecretive(*refusal, made);
  } else {
    fuzz::require(expected == nullptr, "a call that must be refused is refused");
    requireValues(*std::get<std::unique_ptr<platform::AppIntent>>(called), made);
  }
  return 0;
}
