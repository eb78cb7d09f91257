// Measures single operations in a warm process, and how their cost grows with the input. Takes the
// options of Google Benchmark.
#include <cstdint>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/answering_server.h"
#include "bench/counted_syncs.h"
#include "extraction/sms_extraction_response.h"
#include "feedback/amount_formatter.h"
#include "feedback/widget_stats.h"
#include "intents/process_sms_intent.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/app_intents/installed_platform.h"
#include "platform/linux/concurrency/task_executor.h"
#include "queue/pending_sms_queue.h"
#include "store/shared_store.h"
#include "testkit/backend_answers.h"
#include "testkit/private_folders.h"
#include "testkit/queued_items.h"

namespace kivo::bench {
namespace {

using benchmark::State;
using testkit::PrivateFolders;

// SQLite does not write an unchanged value, so each value is used once.
int fresh() {
  static int number = 10'000'000;
  return ++number;
}

// A message of usual length.
PendingSmsItem item() {
  const std::string number = std::to_string(fresh());
  PendingSmsItem made = testkit::queuedItem(number + "-0000-4000-8000-000000000000");
  made.smsText = "Your card ending 1234 was charged EGP 150.75 at Carrefour, reference " + number;
  return made;
}

std::vector<PendingSmsItem> items(std::int64_t count) {
  std::vector<PendingSmsItem> made;
  for (std::int64_t number = 0; number < count; ++number) made.push_back(item());
  return made;
}

SharedStore openStore() { return SharedStore::open(appGroup).value(); }

// Reports the fsyncs per iteration between construction and destruction.
class Syncs {
 public:
  explicit Syncs(State& state) : state_(state) {}
  ~Syncs() {
    state_.counters["syncs"] = benchmark::Counter(static_cast<double>(countedSyncs() - before_),
                                                  benchmark::Counter::kAvgIterations);
  }
  Syncs(const Syncs&) = delete;
  Syncs& operator=(const Syncs&) = delete;

 private:
  State& state_;
  std::int64_t before_ = countedSyncs();
};

void queueLoad(State& state) {
  const PrivateFolders folders;
  SharedStore store = openStore();
  PendingSmsQueue::save(items(state.range(0)), store);
  for (auto _ : state) benchmark::DoNotOptimize(PendingSmsQueue::load(store));
}
BENCHMARK(queueLoad)->Arg(0)->Arg(1)->Arg(20)->Arg(200);

// The saved queue has none of the earlier texts, which are therefore erased.
void queueSaveOfOtherTexts(State& state) {
  const PrivateFolders folders;
  SharedStore store = openStore();
  const Syncs syncs(state);
  for (auto _ : state) {
    state.PauseTiming();
    const auto others = items(state.range(0));
    state.ResumeTiming();
    PendingSmsQueue::save(others, store);
  }
}
BENCHMARK(queueSaveOfOtherTexts)->Arg(0)->Arg(1)->Arg(20)->Arg(200);

// Into a queue of `range(0)` items. A full one drops its oldest text, which is erased.
void queueEnqueue(State& state) {
  const PrivateFolders folders;
  SharedStore store = openStore();
  auto before = items(state.range(0));
  const Syncs syncs(state);
  for (auto _ : state) {
    state.PauseTiming();
    store.writeText(StoreKeys::pendingSmsQueue, "");
    PendingSmsQueue::save(before, store);
    auto added = item();
    const std::int64_t prepared = countedSyncs();
    state.ResumeTiming();
    PendingSmsQueue::enqueue(std::move(added), store);
    state.counters["own syncs"] = static_cast<double>(countedSyncs() - prepared);
  }
}
BENCHMARK(queueEnqueue)->Arg(0)->Arg(1)->Arg(20)->Arg(199)->Arg(200);

void responseDecode(State& state) {
  const std::string body = testkit::savedBody(
      {.description = std::string(static_cast<std::size_t>(state.range(0)), 'x')});
  for (auto _ : state) benchmark::DoNotOptimize(SMSExtractionResponse::decode(body));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(body.size()));
}
BENCHMARK(responseDecode)->Arg(10)->Arg(1'000)->Arg(100'000)->Arg(1'000'000);

void storeOpen(State& state) {
  const PrivateFolders folders;
  openStore();
  const Syncs syncs(state);
  for (auto _ : state) benchmark::DoNotOptimize(openStore());
}
BENCHMARK(storeOpen);

void storeRead(State& state) {
  const PrivateFolders folders;
  SharedStore store = openStore();
  store.writeText(StoreKeys::currency, "EGP");
  store.synchronize();
  for (auto _ : state) benchmark::DoNotOptimize(store.readText(StoreKeys::currency));
}
BENCHMARK(storeRead);

// A write group of `range(0)` short values, like the totals.
void storeWriteGroup(State& state) {
  const PrivateFolders folders;
  SharedStore store = openStore();
  std::vector<std::string> keys;
  for (std::int64_t key = 0; key < state.range(0); ++key) keys.push_back(std::to_string(key));
  const Syncs syncs(state);
  for (auto _ : state) {
    for (const std::string& key : keys) store.writeText({key}, std::to_string(fresh()));
    store.synchronize();
  }
}
BENCHMARK(storeWriteGroup)->Arg(1)->Arg(4)->Arg(16);

void amountFormat(State& state) {
  const PrivateFolders folders;
  const SharedStore store = openStore();
  for (auto _ : state) benchmark::DoNotOptimize(AmountFormatter::format(store, fresh()));
}
BENCHMARK(amountFormat);

void doubleText(State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(platform::doubleText(fresh() / 100.0));
}
BENCHMARK(doubleText);

void doubleFromText(State& state) {
  const std::string text = "100000.25";
  for (auto _ : state) benchmark::DoNotOptimize(platform::doubleFromText(text));
}
BENCHMARK(doubleFromText);

void totals(State& state) {
  const PrivateFolders folders;
  SharedStore store = openStore();
  const Syncs syncs(state);
  for (auto _ : state) WidgetStats::recordExpense(store, fresh() / 100.0);
}
BENCHMARK(totals);

// A whole run without its process: request over http, totals, drain lock; no session bus.
void perform(State& state) {
  const PrivateFolders folders;
  const AnsweringServer server(Answers::saved);
  SharedStore store = openStore();
  store.writeText(StoreKeys::userId, "user-1");
  store.writeText(StoreKeys::supabaseUrl, server.url());
  store.synchronize();
  linux_platform::InstalledPlatform installed(extensionBundle);
  linux_platform::TaskExecutor executor(1);
  const Syncs syncs(state);
  for (auto _ : state) {
    ProcessSMSIntent intent;
    intent.smsText.setFromText("Paid " + std::to_string(fresh()));
    platform::IntentDialog dialog;
    executor.start(installed.perform(intent, dialog)).wait();
    if (!dialog.text.starts_with("Tracked")) state.SkipWithError("the run has tracked nothing");
  }
}
BENCHMARK(perform)->UseRealTime();

}  // namespace
}  // namespace kivo::bench

BENCHMARK_MAIN();
