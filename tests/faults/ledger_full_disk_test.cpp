// kivo-ledger whose book is on a disk that gets full.
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "small_disk.h"
#include "testkit/private_ledger.h"
#include "testkit/raw_store.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;

// The book is on a small disk of its own.
class ALedgerOnASmallDisk : public testing::Test {
 protected:
  void SetUp() override {
    if (!disk_.isMounted()) GTEST_SKIP() << testkit::noSmallDisk;
  }

  static ProgramResult run(std::vector<std::string> arguments) {
    return linux_platform::runProgram({.program = linux_platform::programFolder() / "kivo-ledger",
                                       .arguments = std::move(arguments)});
  }
  std::string stored(const std::string& sql) {
    testkit::RawStore store(ledger_.file());
    EXPECT_EQ(store.run("PRAGMA integrity_check"), "ok\n");
    return store.run(sql);
  }

  testkit::PrivateLedger ledger_;
  testkit::SmallDisk disk_{ledger_.file().parent_path()};
};

TEST_F(ALedgerOnASmallDisk, KeepsAcknowledgedMessagesAndAcceptsTheOthersLater) {
  ASSERT_TRUE(disk_.remount(0, "size=512k"));
  const auto server = ledger_.start();
  std::map<std::string, std::string> acknowledged;
  int refused = 0;
  for (int number = 0; number < 2000 && refused < 5; ++number) {
    const std::string key = "KEY-" + std::to_string(number);
    const testkit::Outcome outcome = ledger_.post(key);
    if (outcome.status() == 200) {
      acknowledged[key] = outcome.body();
    } else {
      EXPECT_EQ(outcome.status(), 503);
      acknowledged[key] = "";
      ++refused;
    }
  }
  ASSERT_EQ(refused, 5);
  std::cout << "acknowledged " << acknowledged.size() - 5 << " messages\n";
  ASSERT_TRUE(disk_.remount(0, "size=8m"));
  for (const auto& [key, before] : acknowledged) {
    const testkit::Outcome again = ledger_.post(key);
    EXPECT_EQ(again.status(), 200) << key;
    EXPECT_TRUE(before.empty() || again.body() == before) << key;
  }
  server->signal(SIGTERM);
  EXPECT_THAT(server->wait().errors,
              testing::HasSubstr("kivo-ledger: the book cannot be read or written"));
  EXPECT_EQ(testkit::RawStore(ledger_.file()).run("PRAGMA integrity_check"), "ok\n");
  EXPECT_EQ(testkit::RawStore(ledger_.file()).run("SELECT count(*) FROM transactions"),
            std::to_string(acknowledged.size()) + "\n");
}

TEST_F(ALedgerOnASmallDisk, KeepsTheStepsOfAnImportThatFitAndTakesTheOthersLater) {
  const std::string file = ledger_.folders().home() / "sms.csv";
  std::ofstream written(file);
  written << "date,sender,text\n";
  for (int number = 0; number < 2'500; ++number) {
    written << 1'577'880'000'000 + std::int64_t{number} * 1'700'000
            << ",Bank,Your card ending 4821 was charged EGP " << 10 + number << ".50 at Kiosk\n";
  }
  written.close();
  const std::vector<std::string> import = {"import", file, "--sender", "Bank", "--json"};
  const ProgramResult failed = run(import);
  EXPECT_EQ(failed.status, 1);
  EXPECT_THAT(failed.errors, testing::HasSubstr("full"));
  EXPECT_EQ(std::stoi(stored("SELECT count(*) FROM transactions")) % 2'000, 0);
  ASSERT_TRUE(disk_.remount(0, "size=16m"));
  EXPECT_EQ(run(import).status, 0);
  EXPECT_EQ(stored("SELECT count(*) FROM transactions"), "2500\n");
}

TEST_F(ALedgerOnASmallDisk, UndoesNothingUntilThereIsRoom) {
  ASSERT_TRUE(disk_.remount(0, "size=16m"));
  for (int number = 0; number < 3; ++number) {
    ASSERT_EQ(run({"add", "--amount", "12", "--payee", "Cafe Nilo"}).status, 0);
  }
  ASSERT_EQ(run({"edit", "1-3", "--category", "Treats"}).status, 0);
  const std::string filler = ledger_.file().parent_path() / "filler";
  std::ofstream(filler) << std::string(16 << 20, 'x');
  const ProgramResult failed = run({"undo"});
  EXPECT_EQ(failed.status, 1);
  EXPECT_THAT(failed.errors, testing::HasSubstr("full"));
  const std::string treats = "SELECT count(*) FROM transactions WHERE category = 'Treats'";
  EXPECT_EQ(stored(treats), "3\n");
  std::filesystem::remove(filler);
  EXPECT_EQ(run({"undo"}).status, 0);
  EXPECT_EQ(stored(treats), "0\n");
}

}  // namespace
}  // namespace kivo
