#include "overview/report_page.h"

#include <algorithm>
#include <map>
#include <utility>

#include "book/book_command.h"
#include "overview/html_writer.h"
#include "overview/report_budgets.h"
#include "overview/report_charts.h"
#include "overview/report_parts.h"
#include "overview/report_review.h"
#include "overview/sum_format.h"

namespace kivo::overview {

using book::LedgerEntry;
using money::Kind;
using money::Money;
using money::Month;

namespace {

std::string counted(std::int64_t count) {
  return std::to_string(count) + (count == 1 ? " transaction" : " transactions");
}

class Page {
 public:
  explicit Page(const ReportFigures& figures)
      : figures_(figures), summary_(figures.summary), sums_(summary_.currency) {}

  std::string written() {
    ReportParts::writeHead(html_, "Kivo: " + summary_.month.name());
    title();
    html_.markup("<main>");
    ReportReview::writeNotice(html_, figures_);
    ReportReview::writeIgnored(html_, summary_);
    ReportParts::writeLeftOut(html_, summary_);
    if (!summary_.isEmpty()) month();
    ReportBudgets::write(html_, summary_.budgets);
    due();
    if (!isEmpty()) months();
    ReportReview::writeList(html_, figures_, [this](const auto& entry) { return sumOf(entry); });
    if (!isEmpty()) list();
    ReportParts::writeFoot(html_);
    return html_.html();
  }

 private:
  // Whether nothing was booked in all of the twelve months.
  [[nodiscard]] bool isEmpty() const {
    return std::all_of(figures_.months.begin(), figures_.months.end(),
                       [](const ReportFigures::Month& month) { return month.transactions == 0; });
  }

  // Also when the refunds exceed them.
  [[nodiscard]] bool hasExpenses() const {
    return std::ranges::any_of(summary_.categories, [](const MonthSummary::Category& category) {
      return category.expense.minorUnits != 0 || category.refunded.minorUnits != 0;
    });
  }

  void title() {
    html_.markup("<header><h1>").text(summary_.month.name()).markup("</h1><p class=\"soft\">");
    if (summary_.isEmpty()) {
      html_.markup("Nothing is booked in ").text(summary_.month.name()).markup(".");
    } else {
      html_.text(figures_.runs ? "So far, beside all of " : "Beside ");
      html_.text(summary_.month.before().name()).markup(". Sums are in ");
      html_.text(summary_.currency.text()).markup(".");
    }
    html_.markup("</p></header>\n");
  }

  void month() {
    html_.markup("<dl class=\"cards\">");
    card({"Spent", summary_.sums.expense, summary_.previous.expense, summary_.sums.refunded});
    card({"Received", summary_.sums.income, summary_.previous.income});
    card({"Transferred", summary_.sums.transfer, summary_.previous.transfer});
    html_.markup("</dl>\n");
    if (hasExpenses()) {
      html_.markup("<div class=\"two\">");
      categories();
      payees();
      html_.markup("</div>\n");
      days();
    }
    ReportParts::writeOtherCurrencies(html_, summary_);
  }

  void card(const ReportParts::Card& card) {
    ReportParts::writeCard(html_, sums_, card, summary_.month.before().name());
  }

  void sumCell(const Money& sum) {
    html_.markup("<td class=\"sum\">").amount(sums_.plain(sum)).markup("</td>");
  }

  void categories() {
    html_.markup("<section class=\"sheet\" aria-labelledby=\"categories\">")
        .markup("<h2 id=\"categories\">Categories</h2><table><thead><tr>")
        .markup("<th scope=\"col\">Category</th><th scope=\"col\" class=\"sum\">Spent</th>")
        .markup("<th scope=\"col\" class=\"sum\">")
        .text(summary_.month.before().shortName())
        .markup("</th></tr></thead><tbody>");
    for (const MonthSummary::Category& category : summary_.categories) {
      html_.markup("<tr><th scope=\"row\">").name(category.name);
      ReportCharts::drawShare(html_, category.expense, summary_.categories.front().expense);
      html_.markup("</th>");
      sumCell(category.expense);
      html_.markup("<td class=\"sum soft\">").amount(sums_.plain(category.previous));
      html_.markup("</td></tr>\n");
    }
    html_.markup("</tbody></table></section>\n");
  }

  void payees() {
    html_.markup("<section class=\"sheet\" aria-labelledby=\"payees\">")
        .markup("<h2 id=\"payees\">Biggest payees</h2><table><thead><tr>")
        .markup("<th scope=\"col\">Payee</th><th scope=\"col\" class=\"count\">Times</th>")
        .markup("<th scope=\"col\" class=\"sum\">Spent</th></tr></thead><tbody>");
    for (const MonthSummary::Payee& payee : summary_.payees) {
      html_.markup("<tr><th scope=\"row\">").name(payee.description);
      html_.markup("</th><td class=\"count soft\">").count(payee.transactions).markup("</td>");
      sumCell(payee.expense);
      html_.markup("</tr>\n");
    }
    html_.markup("</tbody></table></section>\n");
  }

  void days() {
    html_.markup("<section class=\"sheet\" aria-labelledby=\"days\"><h2 id=\"days\">Days</h2>");
    ReportCharts::drawDays(html_, figures_);
    html_.markup("<details><summary>The days as a table</summary><table><thead><tr>")
        .markup("<th scope=\"col\">Day</th><th scope=\"col\" class=\"sum\">Spent</th></tr></thead>")
        .markup("<tbody>");
    for (std::size_t day = 0; day < figures_.days.size(); ++day) {
      if (figures_.days[day].minorUnits == 0) continue;
      html_.markup("<tr><th scope=\"row\">").count(static_cast<std::int64_t>(day) + 1);
      html_.markup(" ").text(summary_.month.name()).markup("</th>");
      sumCell(figures_.days[day]);
      html_.markup("</tr>\n");
    }
    html_.markup("</tbody></table></details></section>\n");
  }

  void due() {
    if (!summary_.today) return;
    bool isOpen = false;
    for (const RecurringPayment& payment : summary_.recurring) {
      const std::string words = dueWords(payment, summary_.today->date);
      if (words.empty()) continue;
      if (!isOpen) {
        html_.markup("<section class=\"sheet\" aria-labelledby=\"due\">")
            .markup("<h2 id=\"due\">Each month</h2><table><thead><tr>")
            .markup("<th scope=\"col\">Payment</th><th scope=\"col\" class=\"sum\">Last sum</th>")
            .markup("</tr></thead><tbody>\n");
      }
      isOpen = true;
      html_.markup("<tr><td>").name(payment.description).markup(" ").text(words);
      html_.markup("</td><td class=\"sum\">")
          .amount(sumText(payment.amount))
          .markup("</td></tr>\n");
    }
    if (isOpen) html_.markup("</tbody></table></section>\n");
  }

  void months() {
    html_.markup(
        "<section class=\"sheet\" aria-labelledby=\"months\"><h2 id=\"months\">Twelve "
        "months</h2>");
    ReportParts::writeLegend(html_);
    std::vector<MonthSums> drawn;
    for (const ReportFigures::Month& month : figures_.months)
      drawn.push_back({month.month, month.sums});
    ReportCharts::drawMonths(html_, drawn);
    html_.markup("<details><summary>The months as a table</summary><table><thead><tr>")
        .markup("<th scope=\"col\">Month</th><th scope=\"col\" class=\"sum\">Spent</th>")
        .markup("<th scope=\"col\" class=\"sum\">Received</th></tr></thead><tbody>");
    for (const ReportFigures::Month& month : figures_.months) {
      html_.markup("<tr><th scope=\"row\">").text(month.month.name()).markup("</th>");
      sumCell(month.sums.expense);
      sumCell(month.sums.income);
      html_.markup("</tr>\n");
    }
    html_.markup("</tbody></table></details></section>\n");
  }

  void list() {
    html_.markup("<section class=\"sheet list\" aria-labelledby=\"list\">")
        .markup("<h2 id=\"list\">Transactions</h2>");
    std::int64_t all = 0;
    for (const ReportFigures::Month& month : figures_.months) all += month.transactions;
    const auto listed = static_cast<std::int64_t>(figures_.entries.size());
    if (listed < all) {
      html_.markup("<p class=\"soft\">The newest ").count(listed).markup(" of ").count(all);
      html_.markup(" are here. <code>").text(book::bookCommand("list"));
      html_.markup("</code> shows all.</p>");
    }
    auto entry = figures_.entries.begin();
    while (entry != figures_.entries.end()) {
      const Month month = entry->date.month();
      const auto end = std::find_if(entry, figures_.entries.end(), [&](const LedgerEntry& other) {
        return other.date.month() != month;
      });
      listMonth(month, entry, end);
      entry = end;
    }
    html_.markup("</section>\n");
  }

  using Entry = std::vector<LedgerEntry>::const_iterator;

  void listMonth(const Month& month, Entry entry, Entry end) {
    html_.markup("<details");
    if (month == summary_.month) html_.markup(" open");
    html_.markup("><summary>").text(month.name()).markup(" <small>");
    html_.text(counted(end - entry)).markup("</small></summary><table><thead><tr>");
    html_.markup("<th scope=\"col\" class=\"day\">Day</th><th scope=\"col\"><div class=\"what\">")
        .markup("<span>Description</span><span>Category</span></div></th>")
        .markup("<th scope=\"col\" class=\"count id\">ID</th>")
        .markup("<th scope=\"col\" class=\"sum\">Sum</th></tr></thead><tbody>\n");
    for (; entry != end; ++entry) row(*entry);
    html_.markup("</tbody></table></details>\n");
  }

  void row(const LedgerEntry& entry) {
    html_.markup("<tr><td class=\"day\"><time datetime=\"").text(entry.date.text()).markup("\">");
    html_.text(entry.date.number() < 10 ? "0" : "")
        .count(entry.date.number())
        .markup("</time></td><td><div class=\"what\">");
    html_.markup("<span>").name(entry.description).markup("</span><small>").name(entry.category);
    if (entry.kind != Kind::expense) html_.markup(" · ").text(kindWord(entry));
    if (entry.counterpart) html_.markup(" · other half ").count(*entry.counterpart);
    if (entry.possibleDuplicateOf) {
      html_.markup(" · looks like ").count(*entry.possibleDuplicateOf);
    }
    html_.markup("</small></div></td><td class=\"count id soft\">").count(entry.id);
    html_.markup("</td>");
    if (entry.kind == Kind::income) {
      html_.markup("<td class=\"sum income\">+");
    } else {
      html_.markup("<td class=\"sum\">");
    }
    html_.amount(sumOf(entry)).markup("</td></tr>\n");
  }

  std::string sumOf(const LedgerEntry& entry) { return entry.amount ? sumText(*entry.amount) : ""; }

  // With its currency unless that is the book's.
  std::string sumText(const Money& sum) {
    if (sum.currency == summary_.currency) return sums_.plain(sum);
    return others_.try_emplace(sum.currency, sum.currency).first->second.withCurrency(sum);
  }

  const ReportFigures& figures_;
  const MonthSummary& summary_;
  SumFormat sums_;
  std::map<money::CurrencyCode, SumFormat> others_;
  HtmlWriter html_;
};

}  // namespace

std::string reportPage(const ReportFigures& figures) { return Page(figures).written(); }

}  // namespace kivo::overview
