#include "phone/ledger_month.h"

#include <chrono>
#include <system_error>

#include "phone/local_ledger.h"
#include "platform/foundation/errors.h"
#include "platform/foundation/json_decoder.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/locale/amount_format.h"
#include "platform/linux/process/child_process.h"

namespace kivo {
namespace {

using linux_platform::AmountFormat;

constexpr std::chrono::seconds summaryTimeout(1);

// Formats `sum`, a plain decimal such as "150.00", with as many decimals as it has.
std::string sumText(const std::string& sum, const std::string& currency) {
  const std::size_t point = sum.find('.');
  const auto decimals = point == std::string::npos ? 0 : static_cast<int>(sum.size() - point - 1);
  return AmountFormat(currency, decimals, AmountFormat::Currency::shown).text(sum);
}

}  // namespace

std::optional<LedgerMonth> LedgerMonth::ask() {
  try {
    const auto result = linux_platform::runProgram(
        {.program = LocalLedger::program(), .arguments = {"summary", "--json"}}, summaryTimeout);
    if (result.status != 0) return std::nullopt;
    return fromSummary(result.output);
  } catch (const std::system_error&) {  // the program cannot be started
    return std::nullopt;
  }
}

std::optional<LedgerMonth> LedgerMonth::fromSummary(std::string_view summary) {
  try {
    const auto figures = platform::JSONDecoder::object(summary);
    const std::string currency = figures.decodeString("currency");
    const auto toReview = platform::integerFromText(figures.decodeString("review"));
    const auto today = figures.decodeObjectIfPresent("today");
    if (!toReview || !today) return std::nullopt;
    const auto count = platform::integerFromText(today->decodeString("expenses"));
    if (!count) return std::nullopt;
    return LedgerMonth{.expenses = sumText(figures.decodeString("expense"), currency),
                       .todayTotal = sumText(today->decodeString("expense"), currency),
                       .todayCount = *count,
                       .toReview = *toReview,
                       .leftOut = figures.decodeStringIfPresent("left_out").value_or("")};
  } catch (const platform::DecodingError&) {
    return std::nullopt;
  }
}

}  // namespace kivo
