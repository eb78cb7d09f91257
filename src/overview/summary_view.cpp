#include "overview/summary_view.h"

#include <string>
#include <utility>
#include <vector>

#include "overview/budget_view.h"

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

// The members of a summary that follow those of its period.
void encodeRest(JSONEncoder& object, const PeriodSummary& summary,
                const std::vector<JSONEncoder>& categories,
                const std::vector<JSONEncoder>& payees) {
  object.encodeObjects("categories", categories);
  object.encodeObjects("payees", payees);
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
}

// The sums of a year or of one of its months.
void encodeSavedSums(JSONEncoder& object, const MovedSums& sums) {
  encodeSums(object, sums);
  object.encodeString("saving", amountText(sums.saving()));
  object.encodeString("transactions", std::to_string(sums.transactions));
}

std::vector<JSONEncoder> monthObjects(const YearSummary& summary) {
  std::vector<JSONEncoder> objects;
  for (const YearSummary::Month& month : summary.months) {
    JSONEncoder& object = objects.emplace_back();
    object.encodeString("month", month.month.text());
    encodeSavedSums(object, month.sums);
    object.encodeString("previous", amountText(month.previous));
  }
  return objects;
}

std::vector<std::string> texts(const std::vector<money::Money>& sums) {
  std::vector<std::string> found;
  for (const money::Money& sum : sums) found.push_back(amountText(sum));
  return found;
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
  encodeRest(object, summary, categoryObjects(summary), payeeObjects(summary));
  object.encodeObjects("budgets", BudgetView::json(summary.budgets));
  return object;
}

JSONEncoder SummaryView::json(const YearSummary& summary) {
  JSONEncoder object;
  object.encodeString("year", summary.year.text());
  object.encodeString("currency", summary.currency.text());
  encodeSavedSums(object, summary.sums);
  object.encodeString("review", std::to_string(summary.review));
  object.encodeString("ignored", std::to_string(summary.ignored));
  JSONEncoder previous;
  previous.encodeString("year", summary.year.before().text());
  encodeSavedSums(previous, summary.previous);
  object.encodeObject("previous", std::move(previous));
  object.encodeObjects("months", monthObjects(summary));
  std::vector<JSONEncoder> categories = categoryObjects(summary);
  for (std::size_t at = 0; at < categories.size(); ++at) {
    categories[at].encodeStrings("months", texts(summary.categoryMonths[at]));
  }
  std::vector<JSONEncoder> payees = payeeObjects(summary);
  for (std::size_t at = 0; at < payees.size(); ++at) {
    payees[at].encodeString("previous", amountText(summary.payeesBefore[at]));
  }
  encodeRest(object, summary, categories, payees);
  return object;
}

}  // namespace kivo::overview
