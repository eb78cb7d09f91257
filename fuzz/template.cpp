// A template fits a message without a crash, in milliseconds for the longest message that is read,
// and its sum is a number of the message. A template that is taught fits the message that it was
// taught by, finds the parts that were named, and holds no digit. The last byte chooses which of
// both is tried.
#include <algorithm>
#include <chrono>
#include <optional>
#include <string>

#include <fuzzer/FuzzedDataProvider.h>

#include "platform/foundation/utf8.h"
#include "property.h"
#include "recognition/amount_digits.h"
#include "recognition/reading.h"
#include "recognition/templates/message_text.h"
#include "recognition/templates/teaching.h"

namespace {

using namespace kivo;
using namespace kivo::recognition;
using kivo::fuzz::require;

std::string withoutBlanks(std::string text) {
  std::erase(text, ' ');
  return text;
}

std::optional<MessagePattern> parsed(const std::string& text) {
  try {
    return MessagePattern::parse(text);
  } catch (const InvalidPattern&) {
    return std::nullopt;
  }
}

std::optional<MessageTemplate> taughtBy(const std::string& message, const TaughtParts& parts) {
  try {
    return teach(message, parts, "EGP");
  } catch (const CannotTeach&) {
    return std::nullopt;
  }
}

void fitAnyPattern(FuzzedDataProvider& data) {
  const std::string text = data.ConsumeRandomLengthString();
  const std::string message = templateForm(partThatCounts(data.ConsumeRemainingBytesAsString()));
  const auto begin = std::chrono::steady_clock::now();
  const auto pattern = parsed(text);
  if (!pattern) return;
  const auto fit = pattern->fit(message);
  const auto taken = std::chrono::steady_clock::now() - begin;
  // Far above what a fit takes in a build with sanitizers. Parsing is linear in the template.
  constexpr auto start = std::chrono::milliseconds(500);
  constexpr auto perByte = std::chrono::microseconds(200);
  require(taken < start + perByte * static_cast<long>(text.size()), "time is bounded");
  if (!fit) return;
  require(fit->amounts.empty() != pattern->hasAmount(), "{amount} is a number");
  for (const std::string& amount : fit->amounts) {
    require(withoutBlanks(message).find(amount) != std::string::npos, "the sum is in the message");
  }
  require(message.find(fit->payee) != std::string::npos, "the name is in the message");
}

void teachAny(FuzzedDataProvider& data) {
  const bool isPayment = data.ConsumeBool();
  const std::string amount = kivo::platform::repairedUtf8(data.ConsumeRandomLengthString());
  const std::string payee = kivo::platform::repairedUtf8(data.ConsumeRandomLengthString());
  const std::string message = kivo::platform::repairedUtf8(data.ConsumeRemainingBytesAsString());
  const std::optional<money::Kind> kind =
      isPayment ? std::optional(money::Kind::expense) : std::nullopt;
  const auto taught = taughtBy(message, {.kind = kind, .amount = amount, .payee = payee});
  if (!taught) return;
  const std::string& text = taught->text;
  require(text.find_first_of("0123456789") == std::string::npos, "no digit is in a template");
  const auto written = parsed(text);
  require(written.has_value(), "a template as it was written is a pattern");
  const auto fit = written->fit(templateForm(message));
  require(fit.has_value(), "the template fits its message");
  if (!kind) return;
  require(fit->amounts.size() == 1, "one number is the sum");
  const money::CurrencyCode currency = taught->currency.value();
  const auto named = money::moneyFromText(templateForm(amount), currency);
  require(withoutBlanks(templateForm(amount)).find(fit->amounts[0]) != std::string::npos ||
              (named && minorUnitsOf(fit->amounts[0], currency.text()) == named->minorUnits),
          "the sum is the one that was named");
  require(fit->payee == templateForm(payee), "the payee is the one that was named");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  if (data.ConsumeBool()) {
    fitAnyPattern(data);
  } else {
    teachAny(data);
  }
  return 0;
}
