// kivo-ledger whose book is on a disk that gets full.
#include <csignal>
#include <filesystem>
#include <iostream>
#include <map>
#include <string>

#include <gmock/gmock.h>

#include "small_disk.h"
#include "testkit/private_ledger.h"
#include "testkit/raw_store.h"

namespace kivo {
namespace {

// The book is on a disk of its own, of 256 KiB.
class ALedgerOnASmallDisk : public testing::Test {
 protected:
  void SetUp() override {
    if (!disk_.isMounted()) GTEST_SKIP() << testkit::noSmallDisk;
  }

  testkit::PrivateLedger ledger_;
  testkit::SmallDisk disk_{ledger_.file().parent_path()};
};

TEST_F(ALedgerOnASmallDisk, KeepsAcknowledgedMessagesAndAcceptsTheOthersLater) {
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

}  // namespace
}  // namespace kivo
