// kivo-ledger whose book is on a disk that gets full.
#include <csignal>
#include <filesystem>
#include <iostream>
#include <map>
#include <string>

#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>

#include "testkit/private_ledger.h"
#include "testkit/raw_store.h"

namespace kivo {
namespace {

// The book's folder is a disk of its own, of 256 KiB.
class ALedgerOnASmallDisk : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(folder());
    if (unshare(CLONE_NEWNS) != 0 ||
        mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", folder().c_str(), "tmpfs", 0, "size=256k,mode=0700") != 0) {
      GTEST_SKIP() << "no file system may be mounted here: needs the superuser";
    }
    mounted_ = true;
  }
  void TearDown() override {
    if (mounted_) umount2(folder().c_str(), MNT_DETACH);
  }

  [[nodiscard]] std::filesystem::path folder() const { return ledger_.file().parent_path(); }

  testkit::PrivateLedger ledger_;
  bool mounted_ = false;
};

TEST_F(ALedgerOnASmallDisk, KeepsAcknowledgedMessagesAndAcceptsTheOthersOnceThereIsRoom) {
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
  ASSERT_EQ(mount("tmpfs", folder().c_str(), "tmpfs", MS_REMOUNT, "size=8m"), 0);
  for (const auto& [key, before] : acknowledged) {
    const testkit::Outcome again = ledger_.post(key);
    EXPECT_EQ(again.status(), 200) << key;
    EXPECT_TRUE(before.empty() || again.body() == before) << key;
  }
  server->signal(SIGTERM);
  EXPECT_THAT(server->wait().errors,
              testing::HasSubstr("kivo-ledger: the book could not be written"));
  EXPECT_EQ(testkit::RawStore(ledger_.file()).run("PRAGMA integrity_check"), "ok\n");
  EXPECT_EQ(testkit::RawStore(ledger_.file()).run("SELECT count(*) FROM transactions"),
            std::to_string(acknowledged.size()) + "\n");
}

}  // namespace
}  // namespace kivo
