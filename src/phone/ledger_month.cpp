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

constexpr std::chrono::seconds timeout(1);

// The number of decimals of a plain decimal such as "150.00".
int decimalsOf(const std::string& sum) {
  const std::size_t point = sum.find('.');
  return point == std::string::npos ? 0 : static_cast<int>(sum.size() - point - 1);
}

}  // namespace

std::optional<LedgerMonth> LedgerMonth::ask() {
  try {
    const auto result = linux_platform::runProgram(
        {.program = LocalLedger::program(), .arguments = {"summary", "--json"}}, timeout);
    if (result.status != 0) return std::nullopt;
    return fromSummary(result.output);
  } catch (const std::system_error&) {  // the program cannot be started
    return std::nullopt;
  }
}

std::optional<LedgerMonth> LedgerMonth::fromSummary(std::string_view summary) {
  try {
    const auto figures = platform::JSONDecoder::object(summary);
    const std::string expenses = figures.decodeString("expense");
    const auto toReview = platform::integerFromText(figures.decodeString("review"));
    if (!toReview) return std::nullopt;
    const AmountFormat format(figures.decodeString("currency"), decimalsOf(expenses),
                              AmountFormat::Currency::shown);
    return LedgerMonth{.expenses = format.text(expenses), .toReview = *toReview};
  } catch (const platform::DecodingError&) {
    return std::nullopt;
  }
}

}  // namespace kivo
