#include "feedback/widget_stats.h"

#include <limits>

#include "platform/foundation/date_formatter.h"
#include "platform/foundation/fatal_stop.h"
#include "platform/foundation/number_text.h"

namespace kivo {
namespace {

std::int64_t oneMore(std::int64_t count) {
  if (count == std::numeric_limits<std::int64_t>::max()) {
    platform::fatalStop("today's number of expenses cannot be counted any further");
  }
  return count + 1;
}

}  // namespace

double WidgetStats::readTotal(const SharedStore& store, StoreKey key) {
  return platform::doubleFromText(store.readText(key).value_or("0")).value_or(0);
}

std::int64_t WidgetStats::readCount(const SharedStore& store, StoreKey key) {
  return platform::integerFromText(store.readText(key).value_or("0")).value_or(0);
}

std::string WidgetStats::today() {
  return platform::DateFormatter{.dateFormat = "yyyy-MM-dd"}.string(platform::Date::now());
}

bool WidgetStats::anyIsCounted(const SharedStore& store) {
  return readTotal(store, StoreKeys::todayTotal) != 0 ||
         readTotal(store, StoreKeys::monthlyTotal) != 0 ||
         readCount(store, StoreKeys::todayCount) != 0;
}

void WidgetStats::restart(SharedStore& store) {
  store.writeText(StoreKeys::todayTotal, platform::doubleText(0));
  store.writeText(StoreKeys::todayCount, platform::integerText(0));
  store.writeText(StoreKeys::monthlyTotal, platform::doubleText(0));
}

void WidgetStats::recordExpense(SharedStore& store, double amount) {
  const std::string day = today();
  std::int64_t count = 1;
  if (store.readText(StoreKeys::todayDateKey).value_or("") == day) {
    const double total = readTotal(store, StoreKeys::todayTotal);
    count = oneMore(readCount(store, StoreKeys::todayCount));
    store.writeText(StoreKeys::todayTotal, platform::doubleText(total + amount));
  } else {
    store.writeText(StoreKeys::todayDateKey, day);
    store.writeText(StoreKeys::todayTotal, platform::doubleText(amount));
  }
  store.writeText(StoreKeys::todayCount, platform::integerText(count));

  const double running = readTotal(store, StoreKeys::monthlyTotal);
  store.writeText(StoreKeys::monthlyTotal, platform::doubleText(running + amount));
  store.synchronize();
}

}  // namespace kivo
