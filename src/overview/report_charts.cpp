#include "overview/report_charts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "overview/sum_format.h"
#include "platform/foundation/number_text.h"

namespace kivo::overview {

using money::minorDigits;
using money::Money;

namespace {

// Drawings are stretched to the width of the page; only their height is in real units.
constexpr double chartHeight = 100;
constexpr double slotWidth = 100;

// The end of an axis from zero: a round number whose half is round as well.
double roundedUp(double largest) {
  if (largest <= 0) return 1;
  const double power = std::pow(10, std::floor(std::log10(largest)));
  for (const double step : {1.0, 2.0, 4.0, 6.0, 8.0}) {
    if (step * power >= largest) return step * power;
  }
  return 10 * power;
}

class Axis {
 public:
  Axis(std::int64_t largest, const money::CurrencyCode& currency)
      : unit_(std::pow(10, minorDigits(currency))),
        top_(roundedUp(static_cast<double>(largest) / unit_)),
        format_(currency.text(), top_ < 2 ? minorDigits(currency) : 0,
                linux_platform::AmountFormat::Currency::hidden) {}

  [[nodiscard]] double heightOf(const Money& sum) const {
    return static_cast<double>(sum.minorUnits) / unit_ / top_ * chartHeight;
  }
  void drawLabels(HtmlWriter& page) const {
    page.markup("<div class=\"axis\" aria-hidden=\"true\">");
    for (const double value : {top_, top_ / 2, 0.0}) {
      page.markup("<span>").amount(format_.text(platform::doubleText(value))).markup("</span>");
    }
    page.markup("</div>");
  }

 private:
  double unit_;
  double top_;
  linux_platform::AmountFormat format_;
};

void beginDrawing(HtmlWriter& page, const Axis& axis, std::size_t slots) {
  page.markup("<div class=\"chart\">");
  axis.drawLabels(page);
  page.markup("<svg role=\"img\" preserveAspectRatio=\"none\" viewBox=\"0 0 ")
      .length(slotWidth * static_cast<double>(slots))
      .markup(" 100\"><title>");
}

void endTitle(HtmlWriter& page, std::size_t slots) {
  page.markup("</title><g class=\"grid\">");
  for (const double height : {0.0, chartHeight / 2, chartHeight}) {
    page.markup("<path d=\"M0 ").length(height).markup("H");
    page.length(slotWidth * static_cast<double>(slots)).markup("\"/>");
  }
  page.markup("</g>");
}

// A bar on the ground of the chart, from `left` to `right`.
template <std::size_t size>
void drawBar(HtmlWriter& page, const char (&kind)[size], double left, double right, double height) {
  if (height <= 0) return;
  const double shown = std::max(height, 0.5);
  page.markup("<rect class=\"").markup(kind).markup("\" x=\"").length(left).markup("\" y=\"");
  page.length(chartHeight - shown).markup("\" width=\"").length(right - left);
  page.markup("\" height=\"").length(shown).markup("\"/>");
}

}  // namespace

void ReportCharts::drawMonths(HtmlWriter& page, const std::vector<MonthSums>& months) {
  const SumFormat format(months.front().sums.expense.currency);
  std::int64_t largest = 0;
  for (const auto& [month, sums] : months) {
    largest = std::max({largest, sums.expense.minorUnits, sums.income.minorUnits});
  }
  const Axis axis(largest, months.front().sums.expense.currency);
  beginDrawing(page, axis, months.size());
  page.text("Spent and received in each month from " + months.front().month.name() + " to " +
            months.back().month.name() + ". The table below has the sums.");
  endTitle(page, months.size());
  double left = 0;
  for (const auto& [month, sums] : months) {
    page.markup("<g><title>").text(month.name()).markup(": spent ");
    page.text(format.plain(sums.expense)).markup(", received ").text(format.plain(sums.income));
    page.markup("</title>");
    drawBar(page, "spent", left + 18, left + 48, axis.heightOf(sums.expense));
    drawBar(page, "received", left + 52, left + 82, axis.heightOf(sums.income));
    page.markup("</g>");
    left += slotWidth;
  }
  page.markup("</svg><div class=\"slots\" aria-hidden=\"true\">");
  for (const MonthSums& month : months) {
    page.markup("<span>").text(month.month.shortName()).markup("</span>");
  }
  page.markup("</div></div>");
}

void ReportCharts::drawDays(HtmlWriter& page, const ReportFigures& figures) {
  const SumFormat format(figures.summary.currency);
  const auto largest = std::ranges::max_element(figures.days, {}, &Money::minorUnits);
  const Axis axis(largest->minorUnits, figures.summary.currency);
  beginDrawing(page, axis, figures.days.size());
  page.text("Spent on each day of " + figures.summary.month.name() +
            ". The table below has the sums.");
  endTitle(page, figures.days.size());
  std::int64_t dayOfMonth = 0;
  for (const Money& sum : figures.days) {
    const double left = slotWidth * static_cast<double>(dayOfMonth++);
    if (sum.minorUnits == 0) continue;
    page.markup("<g><title>").count(dayOfMonth).markup(" ").text(figures.summary.month.name());
    page.markup(": ").text(format.plain(sum)).markup("</title>");
    drawBar(page, "spent", left + 15, left + 85, axis.heightOf(sum));
    page.markup("</g>");
  }
  page.markup("</svg><div class=\"slots\" aria-hidden=\"true\">");
  for (std::size_t day = 1; day <= figures.days.size(); ++day) {
    page.markup("<span>");
    // Each of them would be too narrow.
    if (day == 1 || day % 5 == 0) page.count(static_cast<std::int64_t>(day));
    page.markup("</span>");
  }
  page.markup("</div></div>");
}

void ReportCharts::drawShare(HtmlWriter& page, const Money& part, const Money& whole) {
  const double share = static_cast<double>(std::max<std::int64_t>(part.minorUnits, 0)) /
                       static_cast<double>(std::max<std::int64_t>(whole.minorUnits, 1));
  page.markup("<svg class=\"share\" aria-hidden=\"true\" preserveAspectRatio=\"none\" ")
      .markup("viewBox=\"0 0 100 1\"><rect width=\"")
      .length(100 * share)
      .markup("\" height=\"1\"/></svg>");
}

}  // namespace kivo::overview
