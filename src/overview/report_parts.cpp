#include "overview/report_parts.h"

#include "book/book_command.h"
#include "overview/report_style.h"

namespace kivo::overview {

using money::Money;

void ReportParts::writeHead(HtmlWriter& html, const std::string& title) {
  html.markup("<!DOCTYPE html>\n<html lang=\"en\" dir=\"ltr\">\n<head>\n<meta charset=\"utf-8\">\n")
      .markup("<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; ")
      .markup("style-src 'unsafe-inline'; img-src data:; base-uri 'none'; form-action 'none'\">\n")
      .markup("<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n")
      .markup("<meta name=\"referrer\" content=\"no-referrer\">\n<title>")
      .text(title)
      .markup("</title>\n<style>")
      .markup(reportStyle)
      .markup("</style>\n</head>\n<body>\n");
}

void ReportParts::writeFoot(HtmlWriter& html) {
  html.markup("</main>\n<footer><p>Made by <code>")
      .text(book::bookProgram())
      .markup("</code>. The page loads nothing from elsewhere.</p></footer>\n</body>\n</html>\n");
}

void ReportParts::writeCard(HtmlWriter& html, const SumFormat& sums, const Card& card,
                            const std::string& before) {
  html.markup("<div><dt>").text(card.name).markup("</dt><dd><strong>");
  html.amount(sums.withCurrency(card.sum)).markup("</strong>");
  if (card.refunded.minorUnits != 0) {
    Money whole = card.sum;
    whole += card.refunded;
    html.markup("<small>").amount(sums.plain(whole)).markup(" less ");
    html.amount(sums.plain(card.refunded)).markup(" refunded</small> ");
  }
  html.markup("<small>").amount(sums.plain(card.previous)).markup(" in ").text(before);
  html.markup("</small></dd></div>");
}

void ReportParts::writeLeftOut(HtmlWriter& html, const PeriodSummary& summary) {
  if (summary.leftOut.empty()) return;
  html.markup("<p class=\"notice\">").text(leftOutNote(summary.leftOut)).markup("</p>\n");
}

void ReportParts::writeOtherCurrencies(HtmlWriter& html, const PeriodSummary& summary) {
  if (summary.otherCurrencies.empty()) return;
  html.markup("<section class=\"sheet\" aria-labelledby=\"others\">")
      .markup("<h2 id=\"others\">In other currencies</h2><table>")
      .markup("<caption>Not part of the other sums.</caption><thead><tr>")
      .markup("<th scope=\"col\">Currency</th><th scope=\"col\" class=\"sum\">Spent</th>")
      .markup("<th scope=\"col\" class=\"sum\">Received</th>")
      .markup("<th scope=\"col\" class=\"sum\">Transferred</th></tr></thead><tbody>");
  for (const MovedSums& other : summary.otherCurrencies) {
    const money::CurrencyCode& currency = other.expense.currency;
    const SumFormat sums(currency);
    html.markup("<tr><th scope=\"row\">").text(currency.text()).markup("</th>");
    for (const Money& sum : {other.expense, other.income, other.transfer}) {
      html.markup("<td class=\"sum\">").amount(sums.plain(sum)).markup("</td>");
    }
    html.markup("</tr>\n");
  }
  html.markup("</tbody></table></section>\n");
}

void ReportParts::writeLegend(HtmlWriter& html) {
  html.markup("<ul class=\"legend\"><li><svg aria-hidden=\"true\" viewBox=\"0 0 1 1\">")
      .markup("<rect class=\"spent\" width=\"1\" height=\"1\"/></svg>Spent</li>")
      .markup("<li><svg aria-hidden=\"true\" viewBox=\"0 0 1 1\">")
      .markup("<rect class=\"received\" width=\"1\" height=\"1\"/></svg>Received</li></ul>");
}

}  // namespace kivo::overview
