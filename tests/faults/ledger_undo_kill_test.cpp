// kivo-ledger undo killed at each of its system calls: whether it took back all or nothing.
#include <csignal>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "faulted_program.h"
#include "testkit/ledger_command_test.h"
#include "testkit/raw_store.h"

namespace kivo {
namespace {

using testkit::Fault;

class AKilledUndo : public testkit::LedgerCommandTest {
 protected:
  void SetUp() override {
    if (const std::string reason = testkit::whyNoFaults(); !reason.empty()) GTEST_SKIP() << reason;
    receive({testkit::purchase, "Paid EGP 20.00 at Cafe Nilo", "Paid EGP 30.00 at Cafe Nilo"});
    shown({"rate", "USD", "48.5"});
    shown({"edit", "1", "3", "--category", "Treats", "--description", "Mine"});
    shown({"delete", "2", "--yes"});
    testkit::RawStore(ledger_.file()).run("PRAGMA wal_checkpoint(TRUNCATE)");
    std::filesystem::copy(folder(), copy(), std::filesystem::copy_options::recursive);
  }

  [[nodiscard]] std::filesystem::path folder() const { return ledger_.file().parent_path(); }
  [[nodiscard]] std::filesystem::path copy() const { return ledger_.folders().home() / "copy"; }
  void restore() const {
    std::filesystem::remove_all(folder());
    std::filesystem::copy(copy(), folder(), std::filesystem::copy_options::recursive);
  }
  static std::string book() {
    return shown({"list", "--json"}) + shown({"rate"}) + shown({"history"});
  }
  static linux_platform::ProgramCall undo() {
    return {.program = program(), .arguments = {"undo", "3"}};
  }
};

TEST_F(AKilledUndo, TookBackAllOrNothing) {
  const std::string before = book();
  shown({"undo", "3"});
  const std::string after = book();
  ASSERT_NE(after, before);
  int kills = 0;
  int undone = 0;
  testkit::CallNumbers numbers;
  for (const char* const call : testkit::sweptCalls) {
    for (int number = numbers.first(); number < 1000; number += numbers.step()) {
      const Fault fault{.call = call, .effect = "signal=SIGKILL", .number = number};
      SCOPED_TRACE(testkit::wordsFor(fault));
      restore();
      const auto killed = runProgram(testkit::withFault(fault, undo(), ledger_.file()));
      EXPECT_EQ(testkit::RawStore(ledger_.file()).run("PRAGMA integrity_check"), "ok\n");
      const std::string now = book();
      EXPECT_TRUE(now == before || now == after) << now;
      if (HasFailure() || killed.status == 0) break;
      EXPECT_EQ(killed.status, 128 + SIGKILL);
      ++kills;
      undone += now == after ? 1 : 0;
    }
  }
  std::cout << "killed " << kills << " commands, of which " << undone << " had undone all\n";
  EXPECT_GE(kills, testkit::isLongForm() ? 50 : 1);
}

}  // namespace
}  // namespace kivo
