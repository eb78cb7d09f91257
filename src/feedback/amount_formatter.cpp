#include "feedback/amount_formatter.h"

#include <cmath>

#include "platform/foundation/number_formatter.h"
#include "platform/foundation/number_text.h"

namespace kivo {

std::string AmountFormatter::format(const SharedStore& store, double amount) {
  const double magnitude = std::fabs(amount);
  const platform::NumberFormatter formatter{
      .currencyCode = store.readText(StoreKeys::currency).value_or(std::string(defaultCurrency))};
  const auto text = formatter.string(magnitude);
  return text ? *text : platform::doubleText(magnitude);
}

}  // namespace kivo
