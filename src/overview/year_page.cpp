#include "overview/year_page.h"

#include <algorithm>
#include <vector>

#include "book/book_command.h"
#include "overview/html_writer.h"
#include "overview/report_charts.h"
#include "overview/report_parts.h"
#include "overview/report_review.h"
#include "overview/sum_format.h"

namespace kivo::overview {

using money::Money;

namespace {

class YearPage {
 public:
  explicit YearPage(const YearSummary& summary)
      : summary_(summary), sums_(summary.currency), before_(summary.year.before().text()) {}

  std::string written() {
    ReportParts::writeHead(html_, "Kivo: " + summary_.year.text());
    title();
    html_.markup("<main>");
    review();
    ReportReview::writeIgnored(html_, summary_);
    ReportParts::writeLeftOut(html_, summary_);
    if (summary_.sums.transactions > 0) {
      cards();
      months();
    }
    if (!summary_.categories.empty()) {
      html_.markup("<div class=\"two\">");
      categories();
      payees();
      html_.markup("</div>\n");
      categoriesByMonth();
    }
    ReportParts::writeOtherCurrencies(html_, summary_);
    ReportParts::writeFoot(html_);
    return html_.html();
  }

 private:
  void title() {
    html_.markup("<header><h1>").text(summary_.year.text()).markup("</h1><p class=\"soft\">");
    if (summary_.isEmpty()) {
      html_.markup("Nothing is booked in ").text(summary_.year.text()).markup(".");
    } else {
      html_.text(summary_.runs ? "So far, beside all of " : "Beside ").text(before_);
      html_.markup(". Sums are in ").text(summary_.currency.text()).markup(".");
    }
    html_.markup("</p></header>\n");
  }

  void review() {
    if (summary_.review == 0) return;
    const bool one = summary_.review == 1;
    html_.markup("<p class=\"notice\">").count(summary_.review);
    html_.text(one ? " transaction waits" : " transactions wait");
    html_.markup(" in review and ").text(one ? "is" : "are").markup(" not in these sums: ");
    html_.markup("<code>")
        .text(book::bookCommand("review"))
        .markup("</code> shows ")
        .text(one ? "it" : "them");
    html_.markup(".</p>\n");
  }

  void cards() {
    html_.markup("<dl class=\"cards four\">");
    card({"Spent", summary_.sums.expense, summary_.previous.expense, summary_.sums.refunded});
    card({"Received", summary_.sums.income, summary_.previous.income});
    card({"Transferred", summary_.sums.transfer, summary_.previous.transfer});
    card({"Saved", summary_.sums.saving(), summary_.previous.saving()});
    html_.markup("</dl>\n");
  }

  void card(const ReportParts::Card& card) { ReportParts::writeCard(html_, sums_, card, before_); }

  void sumCell(const Money& sum) {
    html_.markup("<td class=\"sum\">").amount(sums_.plain(sum)).markup("</td>");
  }

  void softCell(const Money& sum) {
    html_.markup("<td class=\"sum soft\">").amount(sums_.plain(sum)).markup("</td>");
  }

  void months() {
    html_.markup("<section class=\"sheet\" aria-labelledby=\"months\">")
        .markup("<h2 id=\"months\">Months</h2>");
    ReportParts::writeLegend(html_);
    std::vector<MonthSums> drawn;
    for (const auto& [month, sums, previous] : summary_.months) drawn.push_back({month, sums});
    ReportCharts::drawMonths(html_, drawn);
    beginWide("months");
    html_.markup("<table><thead><tr><th scope=\"col\">Month</th>")
        .markup("<th scope=\"col\" class=\"sum\">Spent</th><th scope=\"col\" class=\"sum\">")
        .text(before_)
        .markup("</th><th scope=\"col\" class=\"sum\">Received</th>")
        .markup("<th scope=\"col\" class=\"sum\">Saved</th></tr></thead><tbody>");
    for (std::size_t at = 0; at < summary_.shownMonths; ++at) {
      const auto& [month, sums, previous] = summary_.months[at];
      html_.markup("<tr><th scope=\"row\">").text(month.shortName()).markup("</th>");
      sumCell(sums.expense);
      softCell(previous);
      sumCell(sums.income);
      sumCell(sums.saving());
      html_.markup("</tr>\n");
    }
    html_.markup("</tbody></table></div></section>\n");
  }

  void categories() {
    html_.markup("<section class=\"sheet\" aria-labelledby=\"categories\">")
        .markup("<h2 id=\"categories\">Categories</h2><table><thead><tr>")
        .markup("<th scope=\"col\">Category</th><th scope=\"col\" class=\"sum\">Spent</th>")
        .markup("<th scope=\"col\" class=\"sum\">")
        .text(before_)
        .markup("</th></tr></thead><tbody>");
    for (const YearSummary::Category& category : summary_.categories) {
      html_.markup("<tr><th scope=\"row\">").name(category.name);
      ReportCharts::drawShare(html_, category.expense, summary_.categories.front().expense);
      html_.markup("</th>");
      sumCell(category.expense);
      softCell(category.previous);
      html_.markup("</tr>\n");
    }
    html_.markup("</tbody></table></section>\n");
  }

  void payees() {
    html_.markup("<section class=\"sheet\" aria-labelledby=\"payees\">")
        .markup("<h2 id=\"payees\">Biggest payees</h2><table><thead><tr>")
        .markup("<th scope=\"col\">Payee</th><th scope=\"col\" class=\"count\">Times</th>")
        .markup("<th scope=\"col\" class=\"sum\">Spent</th><th scope=\"col\" class=\"sum\">")
        .text(before_)
        .markup("</th></tr></thead><tbody>");
    for (std::size_t at = 0; at < summary_.payees.size(); ++at) {
      const YearSummary::Payee& payee = summary_.payees[at];
      html_.markup("<tr><th scope=\"row\">").name(payee.description);
      html_.markup("</th><td class=\"count soft\">").count(payee.transactions).markup("</td>");
      sumCell(payee.expense);
      softCell(summary_.payeesBefore[at]);
      html_.markup("</tr>\n");
    }
    html_.markup("</tbody></table></section>\n");
  }

  void categoriesByMonth() {
    html_.markup("<section class=\"sheet by-month\" aria-labelledby=\"by-month\">")
        .markup("<h2 id=\"by-month\">Categories by month</h2>");
    beginWide("by-month");
    html_.markup("<table><thead><tr><th scope=\"col\">Category</th>");
    for (std::size_t month = 0; month < summary_.shownMonths; ++month) {
      html_.markup("<th scope=\"col\" class=\"sum\">");
      html_.text(summary_.months[month].month.shortName()).markup("</th>");
    }
    html_.markup("</tr></thead><tbody>");
    const Money largest = largestOfAMonth();
    for (std::size_t at = 0; at < summary_.categories.size(); ++at) {
      html_.markup("<tr><th scope=\"row\">").name(summary_.categories[at].name).markup("</th>");
      for (std::size_t month = 0; month < summary_.shownMonths; ++month) {
        const Money& sum = summary_.categoryMonths[at][month];
        html_.markup("<td class=\"sum\">").amount(sums_.plain(sum));
        ReportCharts::drawShare(html_, sum, largest);
        html_.markup("</td>");
      }
      html_.markup("</tr>\n");
    }
    html_.markup("</tbody><tfoot><tr><th scope=\"row\">Spent</th>");
    for (std::size_t month = 0; month < summary_.shownMonths; ++month) {
      sumCell(summary_.months[month].sums.expense);
    }
    html_.markup("</tr></tfoot></table></div></section>\n");
  }

  [[nodiscard]] Money largestOfAMonth() const {
    Money largest{0, summary_.currency};
    for (const std::vector<Money>& months : summary_.categoryMonths) {
      largest = std::max(largest, std::ranges::max(months, {}, &Money::minorUnits),
                         [](auto a, auto b) { return a.minorUnits < b.minorUnits; });
    }
    return largest;
  }

  // Of a table that may be wider than the screen; the keyboard can scroll it.
  template <std::size_t size>
  void beginWide(const char (&heading)[size]) {
    html_.markup("<div class=\"wide\" role=\"group\" tabindex=\"0\" aria-labelledby=\"")
        .markup(heading)
        .markup("\">");
  }

  const YearSummary& summary_;
  SumFormat sums_;
  std::string before_;
  HtmlWriter html_;
};

}  // namespace

std::string yearPage(const YearSummary& summary) { return YearPage(summary).written(); }

}  // namespace kivo::overview
