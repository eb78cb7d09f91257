#include "overview/summary_view.h"

#include <vector>

#include "money/calendar_day.h"

namespace kivo::overview {

using money::amountText;
using money::monthBefore;

namespace {

using platform::JSONEncoder;

void encodeSums(JSONEncoder& object, const MovedSums& sums, const std::string& currency) {
  object.encodeString("expense", amountText({sums.expense, currency}));
  object.encodeString("income", amountText({sums.income, currency}));
  object.encodeString("transfer", amountText({sums.transfer, currency}));
}

JSONEncoder monthObject(const std::string& month, const MovedSums& sums,
                        const std::string& currency) {
  JSONEncoder object;
  object.encodeString("month", month);
  encodeSums(object, sums, currency);
  object.encodeString("transactions", std::to_string(sums.transactions));
  return object;
}

std::vector<JSONEncoder> categoryObjects(const MonthSummary& summary) {
  std::vector<JSONEncoder> objects;
  for (const MonthSummary::Category& category : summary.categories) {
    JSONEncoder& object = objects.emplace_back();
    object.encodeString("category", category.name);
    object.encodeString("expense", amountText({category.expense, summary.currency}));
    object.encodeString("previous", amountText({category.previous, summary.currency}));
  }
  return objects;
}

std::vector<JSONEncoder> payeeObjects(const MonthSummary& summary) {
  std::vector<JSONEncoder> objects;
  for (const MonthSummary::Payee& payee : summary.payees) {
    JSONEncoder& object = objects.emplace_back();
    object.encodeString("description", payee.description);
    object.encodeString("expense", amountText({payee.expense, summary.currency}));
    object.encodeString("transactions", std::to_string(payee.transactions));
  }
  return objects;
}

JSONEncoder todayObject(const TodaysExpenses& today, const std::string& currency) {
  JSONEncoder object;
  object.encodeString("date", today.date);
  object.encodeString("expense", amountText({today.expense, currency}));
  object.encodeString("expenses", std::to_string(today.expenses));
  return object;
}

}  // namespace

JSONEncoder SummaryView::json(const MonthSummary& summary) {
  JSONEncoder object;
  object.encodeString("month", summary.month);
  object.encodeString("currency", summary.currency);
  encodeSums(object, summary.sums, summary.currency);
  object.encodeString("transactions", std::to_string(summary.sums.transactions));
  object.encodeString("review", std::to_string(summary.review));
  if (summary.today) object.encodeObject("today", todayObject(*summary.today, summary.currency));
  object.encodeObject("previous",
                      monthObject(monthBefore(summary.month), summary.previous, summary.currency));
  object.encodeObjects("categories", categoryObjects(summary));
  object.encodeObjects("payees", payeeObjects(summary));
  std::vector<JSONEncoder> others;
  for (const MonthSummary::OtherCurrency& other : summary.otherCurrencies) {
    others.emplace_back().encodeString("currency", other.currency);
    encodeSums(others.back(), other.sums, other.currency);
  }
  object.encodeObjects("other_currencies", others);
  std::string leftOut;
  for (const std::int64_t id : summary.leftOut) {
    leftOut += (leftOut.empty() ? "" : ", ") + std::to_string(id);
  }
  object.encodeString("left_out", leftOut);
  return object;
}

}  // namespace kivo::overview
