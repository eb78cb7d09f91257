// kivo-ledger killed at each of its system calls: whether it keeps what it has acknowledged.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>

#include <gmock/gmock.h>

#include "book/current_day.h"
#include "faulted_program.h"
#include "testkit/private_ledger.h"
#include "testkit/raw_store.h"

namespace kivo {
namespace {

using testkit::Fault;

class AKilledLedger : public testing::Test {
 protected:
  // The last one is about a payment to come, and is kept as an ignored message.
  static constexpr int requests = 3;

  void SetUp() override {
    if (const std::string reason = testkit::whyNoFaults(); !reason.empty()) GTEST_SKIP() << reason;
  }

  // Kills the ledger at call after call of that name until one comes through, each with a new book.
  void sweepCall(Fault fault, testkit::CallNumbers& numbers) {
    for (fault.number = numbers.first(); fault.number < 1000; fault.number += numbers.step()) {
      SCOPED_TRACE(testkit::wordsFor(fault));
      std::filesystem::remove_all(ledger_.file().parent_path());
      std::filesystem::remove_all(ledger_.socket().parent_path());
      const int status = serveWith(fault);
      expectAllKept();
      if (HasFailure() || status == 0) return;
      EXPECT_EQ(status, 128 + SIGKILL);
      ++kills_;
    }
    ADD_FAILURE() << "no ledger was left alone";
  }

  int kills_ = 0;
  std::size_t acknowledgedInAll_ = 0;

 private:
  static std::string key(int number) { return "KEY-" + std::to_string(number); }
  testkit::Outcome post(int number) {
    const char* const text =
        number + 1 < requests ? testkit::purchase : "EGP 99.00 will be debited for StreamNest.";
    return ledger_.post(key(number), text, book::currentDay().text());
  }

  // A ledger from its start over the requests to its end; returns its exit status.
  int serveWith(const Fault& fault) {
    acknowledged_.clear();
    const auto traced =
        ledger_.start(testkit::withFault(fault, testkit::PrivateLedger::serve(), ledger_.file()));
    const auto ended = [&] { return kill(traced->id(), 0) != 0; };
    for (int number = 0; number < requests && !ended(); ++number) {
      const testkit::Outcome outcome = post(number);
      if (outcome.status() == 200) acknowledged_[key(number)] = outcome.body();
    }
    // strace does not pass the signal on.
    endTraced(traced->id());
    return traced->wait().status;
  }

  // Ends the only child of the tracer `id`.
  static void endTraced(pid_t id) {
    std::ifstream children("/proc/" + std::to_string(id) + "/task/" + std::to_string(id) +
                           "/children");
    pid_t traced = 0;
    if (children >> traced) kill(traced, SIGTERM);
  }

  void expectAllKept() {
    if (std::filesystem::exists(ledger_.file())) {
      EXPECT_EQ(testkit::RawStore(ledger_.file()).run("PRAGMA integrity_check"), "ok\n");
    }
    const auto healthy = ledger_.start();
    for (int number = 0; number < requests; ++number) {
      const testkit::Outcome again = post(number);
      EXPECT_EQ(again.status(), 200);
      const auto before = acknowledged_.find(key(number));
      if (before == acknowledged_.end()) continue;
      EXPECT_EQ(again.body(), before->second);
    }
    healthy->signal(SIGTERM);
    EXPECT_EQ(healthy->wait().status, 0);
    acknowledgedInAll_ += acknowledged_.size();
    const std::string booked = std::to_string(requests - 1);
    EXPECT_EQ(testkit::RawStore(ledger_.file())
                  .run("SELECT count(*), count(DISTINCT key) FROM transactions; "
                       "SELECT count(*) FROM ignored"),
              booked + "|" + booked + "\n1\n");
  }

  testkit::PrivateLedger ledger_;
  std::map<std::string, std::string> acknowledged_;
};

TEST_F(AKilledLedger, KeepsAcknowledgedMessagesAndBooksEachOnce) {
  testkit::CallNumbers numbers;
  for (const char* const call : testkit::sweptCalls) {
    sweepCall({.call = call, .effect = "signal=SIGKILL"}, numbers);
  }
  std::cout << "killed " << kills_ << " ledgers, which had acknowledged " << acknowledgedInAll_
            << " messages\n";
  EXPECT_GE(kills_, testkit::isLongForm() ? 100 : 1);
  EXPECT_GT(acknowledgedInAll_, 0U);
}

}  // namespace
}  // namespace kivo
