#include "overview/summary_view.h"

#include <vector>

namespace kivo::overview {

namespace {

using platform::JSONEncoder;

void encodeSums(JSONEncoder& object, const MovedSums& sums) {
  object.encodeString("expense", amountText(sums.expense));
  object.encodeString("refunded", amountText(sums.refunded));
  object.encodeString("income", amountText(sums.income));
  object.encodeString("transfer", amountText(sums.transfer));
}

JSONEncoder monthObject(const money::Month& month, const MovedSums& sums) {
  JSONEncoder object;
  object.encodeString("month", month.text());
  encodeSums(object, sums);
  object.encodeString("transactions", std::to_string(sums.transactions));
  return object;
}

std::vector<JSONEncoder> categoryObjects(const PeriodSummary& summary) {
  std::vector<JSONEncoder> objects;
  for (const PeriodSummary::Category& category : summary.categories) {
    JSONEncoder& object = objects.emplace_back();
    object.encodeString("category", category.name);
    object.encodeString("expense", amountText(category.expense));
    object.encodeString("refunded", amountText(category.refunded));
    object.encodeString("previous", amountText(category.previous));
  }
  return objects;
}

std::vector<JSONEncoder> payeeObjects(const PeriodSummary& summary) {
  std::vector<JSONEncoder> objects;
  for (const PeriodSummary::Payee& payee : summary.payees) {
    JSONEncoder& object = objects.emplace_back();
    object.encodeString("description", payee.description);
    object.encodeString("expense", amountText(payee.expense));
    object.encodeString("refunded", amountText(payee.refunded));
    object.encodeString("transactions", std::to_string(payee.transactions));
  }
  return objects;
}

JSONEncoder todayObject(const TodaysExpenses& today) {
  JSONEncoder object;
  object.encodeString("date", today.date.text());
  object.encodeString("expense", amountText(today.expense));
  object.encodeString("refunded", amountText(today.refunded));
  object.encodeString("expenses", std::to_string(today.expenses));
  return object;
}

}  // namespace

JSONEncoder SummaryView::json(const MonthSummary& summary) {
  JSONEncoder object;
  object.encodeString("month", summary.month.text());
  object.encodeString("currency", summary.currency.text());
  encodeSums(object, summary.sums);
  object.encodeString("transactions", std::to_string(summary.sums.transactions));
  object.encodeString("review", std::to_string(summary.review));
  object.encodeString("ignored", std::to_string(summary.ignored));
  if (summary.today) object.encodeObject("today", todayObject(*summary.today));
  object.encodeObject("previous", monthObject(summary.month.before(), summary.previous));
  object.encodeObjects("categories", categoryObjects(summary));
  object.encodeObjects("payees", payeeObjects(summary));
  std::vector<JSONEncoder> others;
  for (const MovedSums& sums : summary.otherCurrencies) {
    others.emplace_back().encodeString("currency", sums.expense.currency.text());
    encodeSums(others.back(), sums);
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
