#include "feedback/amount_formatter.h"

#include <cmath>

#include "platform/foundation/number_formatter.h"
#include "platform/foundation/number_text.h"

namespace kivo {

std::string AmountFormatter::currencyCode(const SharedStore& store) {
  return store.readText(StoreKeys::currency).value_or("EGP");
}

std::string AmountFormatter::format(const SharedStore& store, double amount) {
  const double magnitude = std::fabs(amount);
  const platform::NumberFormatter formatter{.currencyCode = currencyCode(store)};
  const auto text = formatter.string(magnitude);
  return text ? *text : platform::doubleText(magnitude);
}

}  // namespace kivo
