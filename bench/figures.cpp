// Measures what commands show of one month, year, account or category, and what they look through
// the whole book for, without starting a process.
#include <array>
#include <functional>
#include <optional>

#include <benchmark/benchmark.h>

#include "bench/filled_book.h"
#include "book/book.h"
#include "ledger/commands/entry_listing.h"
#include "overview/account_figures.h"
#include "overview/month_summary.h"
#include "overview/recurring_payments.h"
#include "overview/report_figures.h"
#include "overview/report_page.h"
#include "overview/summary_view.h"
#include "overview/year_page.h"
#include "overview/year_summary.h"

namespace kivo::bench {
namespace {

using benchmark::DoNotOptimize;
using benchmark::State;
using book::Book;

const money::CurrencyCode currency("EGP");
const money::Month month("2026-10");
const money::Year year = money::Year::fromText("2025").value();
const money::Day today("2026-11-21");

void monthSummary(const Book& book) {
  overview::MonthSummary figures = overview::summarize(book, month, currency);
  figures.recurring = overview::recurringPayments(book, today);
  DoNotOptimize(overview::SummaryView::text(figures, month, {}));
}

void yearSummary(const Book& book) {
  DoNotOptimize(overview::SummaryView::text(overview::summarize(book, year, currency), {}));
}

void monthReport(const Book& book) {
  DoNotOptimize(overview::reportPage(overview::readReport(book, month, currency)));
}

void yearReport(const Book& book) {
  DoNotOptimize(overview::yearPage(overview::summarize(book, year, currency)));
}

void listed(const Book& book, book::EntryFilter filter) {
  filter.from = money::Period::of(month).first;
  filter.to = money::Period::of(month).last;
  DoNotOptimize(ledger::EntryListing::table(book.entries(filter), 100));
}

void accounts(const Book& book) {
  DoNotOptimize(overview::accountFigures(book.accountEntries(), book.accounts()));
}

struct Shown {
  const char* name;
  std::function<void(const Book&)> show;
};

const std::array shown = {
    Shown{"summary", monthSummary},
    Shown{"summary --year", yearSummary},
    Shown{"report", monthReport},
    Shown{"report --year", yearReport},
    Shown{"list --account", [](const Book& book) { listed(book, {.account = "4821"}); }},
    Shown{"list --category", [](const Book& book) { listed(book, {.category = "Category 1"}); }},
    Shown{"recurring",
          [](const Book& book) { DoNotOptimize(overview::recurringPayments(book, today)); }},
    Shown{"accounts", accounts},
    Shown{"review", [](const Book& book) { DoNotOptimize(book.likelyPairs()); }},
};

// The book of the last measurement: filling one takes longer than to measure all.
struct Filled {
  explicit Filled(std::int64_t transactions) : count(transactions) { fill(folders, count); }
  std::int64_t count;
  testkit::PrivateFolders folders = {};
};

void ledgerShows(State& state) {
  static std::optional<Filled> filled;
  const std::int64_t count = state.range(0);
  if (!filled || filled->count != count) {
    filled.reset();
    filled.emplace(count);
  }
  const Shown& one = shown[static_cast<std::size_t>(state.range(1))];
  state.SetLabel(one.name);
  for (auto _ : state) {
    const Book book = Book::open();
    book.atOneMoment([&] { one.show(book); });
  }
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  for (const std::int64_t count : {100'000, 1'000'000}) {
    for (std::size_t at = 0; at < shown.size(); ++at) {
      benchmark->Args({count, static_cast<std::int64_t>(at)});
    }
  }
}
BENCHMARK(ledgerShows)->Apply(sizes)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kivo::bench
