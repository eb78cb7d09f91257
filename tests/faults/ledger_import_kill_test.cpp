// kivo-ledger import killed at each of its commits: whether the next import completes the book.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "faulted_program.h"
#include "testkit/private_ledger.h"
#include "testkit/raw_store.h"

namespace kivo {
namespace {

using linux_platform::ProgramCall;
using testkit::Fault;

class AKilledImport : public testing::Test {
 protected:
  // Of three steps, the last one not full.
  static constexpr int messages = 5'000;

  void SetUp() override {
    if (const std::string reason = testkit::whyNoFaults(); !reason.empty()) GTEST_SKIP() << reason;
    std::ofstream file(path());
    file << "date,sender,text\n";
    for (int number = 0; number < messages; ++number) {
      file << 1'577'880'000'000 + std::int64_t{number} * 1'700'000
           << ",MyBank,Your card ending 4821 was charged EGP " << 10 + number << ".50 at Shop "
           << number % 50 << "\n";
    }
  }

  [[nodiscard]] std::filesystem::path path() const { return ledger_.folders().home() / "sms.csv"; }
  [[nodiscard]] ProgramCall import() const {
    return {.program = linux_platform::programFolder() / "kivo-ledger",
            .arguments = {"import", path().string(), "--sender", "MyBank", "--json"}};
  }
  // The number of transactions, and of their keys.
  std::string stored() {
    testkit::RawStore store(ledger_.file());
    EXPECT_EQ(store.run("PRAGMA integrity_check"), "ok\n");
    return store.run("SELECT count(*), count(DISTINCT key) FROM transactions");
  }

  testkit::PrivateLedger ledger_;
};

TEST_F(AKilledImport, KeepsItsStepsAndIsCompletedByTheNextOne) {
  int kills = 0;
  int begun = 0;
  const int step = testkit::isLongForm() ? 1 : 4;
  for (int number = 1; number < 100; number += step) {
    SCOPED_TRACE(number);
    std::filesystem::remove_all(ledger_.file().parent_path());
    linux_platform::runProgram({.program = import().program, .arguments = {"list"}});
    const Fault fault{.call = "fdatasync", .effect = "signal=SIGKILL", .number = number};
    const auto killed =
        linux_platform::runProgram(testkit::withFault(fault, import(), ledger_.file()));
    if (killed.status == 0) break;
    ASSERT_EQ(killed.status, 128 + SIGKILL) << killed.errors;
    ++kills;
    const int before = std::stoi(stored());
    EXPECT_TRUE(before % 2'000 == 0 || before == messages) << before;
    if (before > 0) ++begun;
    const auto next = linux_platform::runProgram(import());
    ASSERT_EQ(next.status, 0) << next.errors;
    const auto counts = nlohmann::json::parse(next.output);
    EXPECT_EQ(counts["known"], before);
    EXPECT_EQ(counts["booked"], messages - before);
    EXPECT_EQ(stored(), std::to_string(messages) + "|" + std::to_string(messages) + "\n");
  }
  std::cout << "killed " << kills << " imports, of which " << begun << " had kept a step\n";
  EXPECT_GE(begun, 2);
}

}  // namespace
}  // namespace kivo
