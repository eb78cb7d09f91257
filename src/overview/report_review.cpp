#include "overview/report_review.h"

#include <algorithm>

#include "book/book_command.h"

namespace kivo::overview {

using book::LedgerEntry;
using money::Kind;

namespace {

// The message in one paragraph.
std::string inOneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
  return text;
}

void writeRow(HtmlWriter& html, const LedgerEntry& entry, const std::string& sum) {
  html.markup("<tr><td class=\"count id soft\">").count(entry.id).markup("</td><td>");
  html.name(entry.description).markup("<small class=\"message\"><time datetime=\"");
  html.text(entry.date.text()).markup("\">").text(entry.date.text()).markup("</time>");
  if (entry.kind != Kind::expense) html.markup(" · ").text(kindText(entry.kind));
  if (entry.possibleDuplicateOf) html.markup(" · looks like ").count(*entry.possibleDuplicateOf);
  html.markup("</small>");
  if (entry.text) {
    html.markup("<small class=\"message\">").name(inOneLine(*entry.text)).markup("</small>");
  }
  html.markup("</td><td class=\"sum\">");
  if (sum.empty()) {
    html.markup("unknown");
  } else {
    html.amount(sum);
  }
  html.markup("</td></tr>\n");
}

}  // namespace

void ReportReview::writeNotice(HtmlWriter& html, const ReportFigures& figures) {
  const std::int64_t count = figures.summary.review;
  if (count == 0) return;
  html.markup("<p class=\"notice\">").count(count);
  html.text(count == 1 ? " transaction waits in review and is"
                       : " transactions wait in review and are");
  html.markup(" not in these sums: see \"In review\" below.</p>\n");
}

void ReportReview::writeIgnored(HtmlWriter& html, const PeriodSummary& summary) {
  if (summary.ignored == 0) return;
  const bool one = summary.ignored == 1;
  html.markup("<p class=\"notice\">").count(summary.ignored);
  html.text(one ? " message with a sum was" : " messages with a sum were");
  html.markup(" not booked: <code>").text(book::bookCommand("ignored"));
  html.markup("</code> shows ").text(one ? "it" : "them");
  html.markup(".</p>\n");
}

void ReportReview::writeList(HtmlWriter& html, const ReportFigures& figures,
                             const std::function<std::string(const LedgerEntry&)>& sumOf) {
  if (figures.review.empty()) return;
  html.markup(
          "<section class=\"sheet\" aria-labelledby=\"review\"><h2 id=\"review\">In review</h2>")
      .markup("<p class=\"soft\"><code>")
      .text(book::bookCommand("accept ID"))
      .markup("</code> books one, <code>edit ID</code> ")
      .markup("corrects it, <code>delete ID</code> deletes it.</p>");
  const auto listed = static_cast<std::int64_t>(figures.review.size());
  if (listed < figures.summary.review) {
    html.markup("<p class=\"soft\">The newest ")
        .count(listed)
        .markup(" are here. ")
        .markup("<code>")
        .text(book::bookCommand("review"))
        .markup("</code> shows all.</p>");
  }
  html.markup("<table><thead><tr><th scope=\"col\" class=\"count id\">ID</th>")
      .markup("<th scope=\"col\">Payee and message</th>")
      .markup("<th scope=\"col\" class=\"sum\">Sum</th></tr></thead><tbody>\n");
  for (const LedgerEntry& entry : figures.review) writeRow(html, entry, sumOf(entry));
  html.markup("</tbody></table></section>\n");
}

}  // namespace kivo::overview
