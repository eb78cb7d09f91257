// The store after a run was killed at each of its system calls.
#include <chrono>
#include <csignal>
#include <functional>
#include <iostream>

#include "faulted_program.h"
#include "platform/foundation/date.h"
#include "queue/sms_queue_drainer.h"
#include "testkit/queued_items.h"
#include "testkit/raw_store.h"
#include "testkit/set_clock.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testkit::Fault;
using testkit::queuedItem;
using testkit::StoreContents;

constexpr const char* killed = "signal=SIGKILL";
constexpr double farAhead = 4e9;  // a lock that no run takes

double now() { return platform::secondsSince1970(platform::Date::now()); }

class AKilledRun : public testkit::FaultedProgram {
 protected:
  struct Run {
    ProgramResult result;
    std::string text;
    double startedAt = 0;
    [[nodiscard]] bool answered(const std::string& dialog) const {
      return result.output.find(dialog) != std::string::npos;
    }
  };
  using Check = std::function<void(const Run&)>;

  /// Kills a run at one call after the other until one ends by itself, each on a fresh store, and
  /// checks each of them. In the long form at least `fewest` must have been killed.
  void sweep(int fewest, const std::string& dialog, const Check& check) {
    int kills = 0;
    testkit::CallNumbers numbers;
    for (const char* const call : testkit::sweptCalls) {
      kills += sweepCall({.call = call, .effect = killed}, numbers, dialog, check);
    }
    // The loader's many calls hide the few on the store, which another thread makes.
    for (const char* const call : {"openat", "close"}) {
      kills += sweepCall({.call = call, .effect = killed, .where = Fault::Where::onTheStore},
                         numbers, dialog, check);
    }
    std::cout << "killed " << kills << " runs\n";
    EXPECT_GE(kills, testkit::isLongForm() ? fewest : 1);
  }

  void expectEarlierQueueUntouched(const StoreContents& found) {
    ASSERT_THAT(found.queue, SizeIs(testing::Ge(earlier.size())));
    EXPECT_EQ(std::vector(found.queue.begin(),
                          found.queue.begin() + static_cast<std::ptrdiff_t>(earlier.size())),
              earlier);
  }

  std::vector<PendingSmsItem> earlier{queuedItem("A"), queuedItem("B", 4), queuedItem("C"),
                                      queuedItem("D")};

 private:
  int sweepCall(Fault fault, testkit::CallNumbers& numbers, const std::string& dialog,
                const Check& check) {
    int kills = 0;
    for (fault.number = numbers.first(); fault.number < 1000; fault.number += numbers.step()) {
      SCOPED_TRACE(testkit::wordsFor(fault));
      restoreStore();
      Run run{.result = {}, .text = "Paid " + std::to_string(++runs_), .startedAt = now()};
      run.result = processSMSWith(fault, run.text);
      check(run);
      if (testing::Test::HasFailure()) return kills;
      if (run.result.status == 0) {
        EXPECT_THAT(run.result.output, EndsWith(dialog + "\n"));
        return kills;
      }
      EXPECT_EQ(run.result.status, 128 + SIGKILL) << run.result.errors;
      ++kills;
    }
    ADD_FAILURE() << "no run was left alone";
    return kills;
  }

  int runs_ = 0;
};

TEST_F(AKilledRun, KeepsQueueAndTotalsConsistentWhenItSaves) {
  keepStore(earlier, farAhead);
  backend.answers(200, testkit::savedAnswer("expense"));
  sweep(90, "at Carrefour", [this](const Run& run) {
    const StoreContents found = contents();
    expectWhole(found);
    EXPECT_EQ(found.queue, earlier);
    EXPECT_EQ(found.lock, farAhead);
    if (run.answered("Tracked")) {
      EXPECT_THAT(keysAtBackend(run.text), SizeIs(1));
      EXPECT_NE(found.totals, earlierTotals);
    }
  });
}

TEST_F(AKilledRun, QueuesItsTextUnderItsKeyOrNotAtAllWhenOffline) {
  keepStore(earlier, 0);
  backend.answers(503, "");
  sweep(90, "Saved offline - will process when connected", [this](const Run& run) {
    const StoreContents found = contents();
    expectWhole(found);
    expectEarlierQueueUntouched(found);
    EXPECT_EQ(found.totals, earlierTotals);
    EXPECT_EQ(found.lock, 0);
    if (run.answered("Saved offline")) {
      EXPECT_THAT(found.queue, SizeIs(earlier.size() + 1));
    }
    if (found.queue.size() > earlier.size()) {
      EXPECT_EQ(found.queue.back().smsText, run.text);
      EXPECT_THAT(keysAtBackend(run.text), ElementsAre(found.queue.back().id));
    }
  });
}

TEST_F(AKilledRun, LeavesAUsableStoreWhenItIsTheFirst) {
  sweep(100, "Please open Kivo app and sign in first", [this](const Run&) {
    signIn();
    EXPECT_EQ(testkit::RawStore(folders.storeFile()).run("PRAGMA integrity_check"), "ok\n");
    EXPECT_EQ(processSMS("Paid 1").output, "SMS ignored - not a transaction\n");
  });
}

TEST_F(AKilledRun, LosesNoTextAndLeavesALockThatExpiresWhenItDrains) {
  keepStore(earlier, 0);
  backend.answers(200, testkit::savedAnswer("expense"));
  std::size_t sentBefore = 0;
  sweep(150, "at Carrefour", [&](const Run& run) {
    StoreContents found = contents();
    expectWhole(found);
    const auto sent = keysAtBackend("text A").size();
    if (found.queue != earlier) {
      EXPECT_THAT(found.queue, ElementsAre(earlier.back()));
      EXPECT_EQ(sent, sentBefore + 1);
    }
    if (run.answered("Tracked")) {
      EXPECT_THAT(keysAtBackend(run.text), SizeIs(1));
      EXPECT_EQ(found.lock, 0);
    }
    sentBefore = sent;
    if (found.lock == 0) return;

    EXPECT_GE(found.lock, run.startedAt);
    EXPECT_LE(found.lock, now());
    SharedStore opened = store();
    testkit::SetClock clock(platform::Moment(std::chrono::ceil<platform::Moment::duration>(
        std::chrono::duration<double>(found.lock + 30))));
    clock.advance(-std::chrono::milliseconds(1));
    EXPECT_FALSE(SmsQueueDrainer::tryAcquireLock(opened));
    clock.advance(std::chrono::milliseconds(1));
    EXPECT_TRUE(SmsQueueDrainer::tryAcquireLock(opened));
  });
  for (const PendingSmsItem& item : earlier) {
    for (const std::string& key : keysAtBackend(item.smsText)) EXPECT_EQ(key, item.id);
  }
}

}  // namespace
}  // namespace kivo
