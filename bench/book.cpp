// Measures the ledger's book with up to 100,000 transactions.
#include "book/book.h"

#include <string>

#include <benchmark/benchmark.h>

#include "bench/filled_book.h"
#include "ledger/commands/entry_listing.h"
#include "ledger/extraction_endpoint.h"
#include "platform/foundation/json_encoder.h"
#include "testkit/private_folders.h"

namespace kivo::bench {

using book::Book;

namespace {

using benchmark::State;

std::string body(const std::string& key) {
  platform::JSONEncoder object;
  object.encodeString(
      "sms_text",
      "Your card ending 4821 was charged EGP 150.00 at Carrefour City on 21-11-2026. "
      "Ref " +
          key);
  object.encodeString("user_id", "user");
  object.encodeString("expense_date", "2026-11-21");
  object.encodeString("idempotency_key", key);
  return object.text();
}

void ledgerAnswer(State& state) {
  const testkit::PrivateFolders folders;
  fill(folders, state.range(0));
  ledger::ExtractionEndpoint endpoint([] { return money::CurrencyCode("EGP"); },
                                      [](const book::LedgerEntry&) {});
  int number = 0;
  for (auto _ : state) {
    const auto answer = endpoint.answers({{.method = "POST",
                                           .target = "/functions/v1/sms-extraction",
                                           .body = body("NEW-" + std::to_string(++number))}})[0];
    if (!answer.body.starts_with(R"({"saved":true)")) state.SkipWithError("nothing was booked");
  }
}
BENCHMARK(ledgerAnswer)->Arg(1)->Arg(100'000)->UseRealTime()->Unit(benchmark::kMillisecond);

// The rules for a payee among that many with a wildcard, and its look-alikes.
void ledgerRules(State& state) {
  const testkit::PrivateFolders folders;
  book::Book book = book::Book::open();
  book.inOneStep([&] {
    for (int number = 0; number < state.range(0); ++number) {
      book.keepRule("*Merchant " + std::to_string(number) + " of*", {.category = "Fun"});
    }
  });
  book::LedgerEntry entry;
  entry.payee = "The Merchant 0 of Old Cairo";
  for (auto _ : state) {
    const book::LedgerEntry fitted = book.fitted(entry);
    if (state.range(0) > 0 && fitted.category != "Fun") state.SkipWithError("no rule fits");
  }
}
BENCHMARK(ledgerRules)->Arg(0)->Arg(1'000)->Unit(benchmark::kMicrosecond);

// The work of `kivo-ledger list --month`, without starting a process.
void ledgerListMonth(State& state) {
  const testkit::PrivateFolders folders;
  fill(folders, state.range(0));
  std::size_t lines = 0;
  for (auto _ : state) {
    const Book book = Book::open();
    const auto entries =
        book.entries({.from = money::Day("2026-10-01"), .to = money::Day("2026-10-31")});
    benchmark::DoNotOptimize(ledger::EntryListing::table(entries, 100));
    lines = entries.size();
  }
  state.counters["lines"] = static_cast<double>(lines);
}
BENCHMARK(ledgerListMonth)->Arg(100'000)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kivo::bench
