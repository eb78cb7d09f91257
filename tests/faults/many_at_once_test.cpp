// Many runs of the real program at the same time on one store: what overlaps may lose and may not.
#include <algorithm>
#include <iostream>
#include <map>
#include <mutex>
#include <set>
#include <thread>

#include "asked_form.h"
#include "platform/foundation/number_text.h"
#include "store_agreement.h"
#include "testkit/extension_program.h"
#include "unreliable_backend.h"

namespace kivo::testkit {
namespace {

using linux_platform::ProgramResult;

constexpr int processes = 8;
constexpr const char* tracked = "Tracked EGP\u00a01.00 at Shop\n";

class ParallelRuns : public ExtensionProgram {
 protected:
  /// Calls `run` with each worker's and turn's number, the workers side by side.
  template <typename Run>
  static void sideBySide(int turns, Run run) {
    std::vector<std::thread> workers;
    for (int worker = 0; worker < processes; ++worker) {
      workers.emplace_back([=] {
        for (int turn = 0; turn < turns; ++turn) run(worker, turn);
      });
    }
    for (std::thread& worker : workers) worker.join();
  }

  [[nodiscard]] std::set<std::string> queuedTexts() const {
    std::set<std::string> texts;
    std::set<std::string> ids;
    for (const PendingSmsItem& item : queue()) {
      EXPECT_TRUE(texts.insert(item.smsText).second) << item.smsText;
      EXPECT_TRUE(ids.insert(item.id).second);
    }
    return texts;
  }

  void expectWholeStore() const { EXPECT_EQ(storeDisagreement(folders.storeFile()), ""); }

  static bool isSavedOffline(const ProgramResult& result) {
    return result.status == 0 && result.errors.empty() &&
           result.output.ends_with(
               " error: URLError cannotConnectToHost: The host did not take the "
               "connection\nSaved offline - will process when connected\n");
  }
};

std::string textOf(int worker, int turn) {
  return "Paid 1.0 EGP at Shop " + std::to_string(worker) + "." + std::to_string(turn);
}

enum class Amount { ofTheCap, beyondTheCap };

void PrintTo(Amount amount, std::ostream* stream) {
  *stream << (amount == Amount::ofTheCap ? "of the cap" : "beyond the cap");
}

class OfflineRuns : public ParallelRuns, public testing::WithParamInterface<Amount> {};

TEST_P(OfflineRuns, KeepTheStoreIntactAndLoseTextsOnlyByOverlapOrCap) {
  signIn();
  backend.goAway();
  std::atomic<int> savedOffline = 0;
  const int turns = GetParam() == Amount::ofTheCap ? 200 / processes : inAskedForm(50, 200);
  sideBySide(turns, [&](int worker, int turn) {
    const ProgramResult result =
        turn % 2 == 0 ? processSMS(textOf(worker, turn))
                      : run({"perform", "AddExpenseIntent", "--amount", "1", "--merchant",
                             "Shop " + std::to_string(worker) + "." + std::to_string(turn)});
    if (isSavedOffline(result)) ++savedOffline;
  });
  EXPECT_EQ(savedOffline, processes * turns);
  expectWholeStore();

  const auto texts = queuedTexts();
  std::set<std::string> handedOver;
  for (int worker = 0; worker < processes; ++worker) {
    for (int turn = 0; turn < turns; ++turn) handedOver.insert(textOf(worker, turn));
  }
  EXPECT_TRUE(std::includes(handedOver.begin(), handedOver.end(), texts.begin(), texts.end()));
  EXPECT_FALSE(texts.empty());
  EXPECT_LE(texts.size(), 200U);
  std::cout << "measured: " << handedOver.size() << " offline runs of 8 processes, " << texts.size()
            << " texts queued\n";

  // Nothing remains that would hinder a later run.
  EXPECT_TRUE(isSavedOffline(processSMS("one more")));
  EXPECT_TRUE(queuedTexts().contains("one more"));
}

// The queue holds 200 texts; those that are missing were lost to overlaps.
INSTANTIATE_TEST_SUITE_P(, OfflineRuns, testing::Values(Amount::ofTheCap, Amount::beyondTheCap),
                         [](const auto& amount) {
                           return amount.param == Amount::ofTheCap ? "AtTheCap" : "BeyondTheCap";
                         });

TEST_F(ParallelRuns, KeepTheStoreIntactAndSendEachTextUnderOneKey) {
  UnreliableBackend unreliable(7, 0.3);
  signIn(unreliable.url());
  std::mutex mutex;
  std::set<std::string> trackedTexts;
  std::set<std::string> offlineTexts;
  const int turns = inAskedForm(25, 200);
  sideBySide(turns, [&](int worker, int turn) {
    unreliable.beginRun();
    const ProgramResult result = processSMS(textOf(worker, turn));
    const std::lock_guard lock(mutex);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    const bool wasTracked = result.output == tracked;
    EXPECT_TRUE(wasTracked ||
                result.output.ends_with("\nSaved offline - will process when connected\n"))
        << result.output;
    (wasTracked ? trackedTexts : offlineTexts).insert(textOf(worker, turn));
  });
  expectWholeStore();
  EXPECT_EQ(store().readFloat(StoreKeys::smsQueueDrainLock), 0);

  const auto waiting = queue();
  const std::string count = store().readText(StoreKeys::todayCount).value_or("");
  const std::string total = store().readText(StoreKeys::todayTotal).value_or("");
  // Each overlap may lose an expense, and from one of the two alone when another run's write comes
  // between the reading of the one and of the other.
  EXPECT_LE(static_cast<std::size_t>(std::stoi(count)), trackedTexts.size());
  EXPECT_LE(std::stod(total), static_cast<double>(trackedTexts.size()));

  unreliable.heal();
  for (int run = 0; !queue().empty() && run < 200; ++run) {
    EXPECT_EQ(processSMS("healthy " + std::to_string(run)).output, tracked);
  }
  EXPECT_TRUE(queue().empty());
  EXPECT_EQ(unreliable.contradictions(), 0);

  std::map<std::string, int> keysOfText;
  const auto stored = unreliable.stored();
  for (const auto& [key, text] : stored) ++keysOfText[text];
  for (const auto& [text, keys] : keysOfText) EXPECT_EQ(keys, 1) << text;
  for (const std::string& text : trackedTexts) EXPECT_TRUE(keysOfText.contains(text)) << text;
  for (const PendingSmsItem& item : waiting) EXPECT_EQ(stored.at(item.id), item.smsText);
  const auto lost = std::count_if(offlineTexts.begin(), offlineTexts.end(),
                                  [&](const auto& text) { return !keysOfText.contains(text); });
  std::cout << "measured: " << processes * turns << " runs of 8 processes, " << trackedTexts.size()
            << " tracked, of which " << count << " counted and " << total
            << " summed up in the totals; " << offlineTexts.size() << " saved offline, of which "
            << lost << " lost to overlaps\n";
}

TEST_F(ParallelRuns, CreateTheSameStoreWithoutAFailure) {
  const auto phone = linux_platform::programFolder() / "kivo-phone";
  const int rounds = inAskedForm(30, 100);
  for (int round = 0; round < rounds; ++round) {
    const TemporaryFolder data;
    std::vector<std::unique_ptr<linux_platform::ChildProcess>> makers;
    for (int maker = 0; maker < processes; ++maker) {
      makers.push_back(std::make_unique<linux_platform::ChildProcess>(linux_platform::ProgramCall{
          .program = phone,
          .arguments = {"store", "set", "key" + std::to_string(maker), "made"},
          .environment = {{"XDG_DATA_HOME", (data.path() / "new").string()}}}));
    }
    for (const auto& maker : makers) {
      const ProgramResult result = maker->wait();
      EXPECT_EQ(result.status, 0);
      EXPECT_EQ(result.errors, "");
    }
    const auto file = data.path() / "new" / appGroup / "defaults.sqlite3";
    EXPECT_EQ(RawStore(file).run("SELECT count(*) FROM defaults WHERE value = 'made'"), "8\n");
    EXPECT_EQ(storeDisagreement(file), "");
  }
  std::cout << "measured: " << rounds << " stores, each made by 8 processes at once\n";
}

}  // namespace
}  // namespace kivo::testkit
