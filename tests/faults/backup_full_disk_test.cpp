// Backups and restored books on a disk that is full.
#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "book/book.h"
#include "book/book_backup.h"
#include "platform/linux/process/child_process.h"
#include "small_disk.h"
#include "testkit/private_folders.h"
#include "testkit/raw_store.h"

namespace kivo {
namespace {

namespace fs = std::filesystem;
using linux_platform::ProgramResult;
using testing::HasSubstr;
using testing::SizeIs;

class ABackupOnASmallDisk : public testing::Test {
 protected:
  static ProgramResult run(std::vector<std::string> arguments) {
    return linux_platform::runProgram({.program = linux_platform::programFolder() / "kivo-ledger",
                                       .arguments = std::move(arguments)});
  }
  // More than the disk holds.
  static void addMuch() {
    book::Book book = book::Book::open();
    book.inOneStep([&] {
      for (int number = 0; number < 300; ++number) {
        book::LedgerEntry entry;
        entry.key = "KEY-" + std::to_string(number);
        entry.userId = "user";
        entry.amount = money::Money{15000, "EGP"};
        entry.description = "Kiosk";
        entry.text = std::string(1000, 'x');
        book.add(entry);
      }
    });
  }
  static std::size_t paymentsInBook() { return book::Book::open().entries({}).size(); }

  testkit::PrivateFolders folders_;
};

TEST_F(ABackupOnASmallDisk, LeavesTheOldOneWhenTheDiskIsFull) {
  const testkit::SmallDisk disk(folders_.home() / "stick");
  if (!disk.isMounted()) GTEST_SKIP() << testkit::noSmallDisk;
  const std::string file = folders_.home() / "stick" / "book.kivo";
  ASSERT_EQ(run({"backup", file}).status, 0);
  addMuch();
  const ProgramResult failed = run({"backup", file});
  EXPECT_EQ(failed.status, 1);
  EXPECT_THAT(failed.errors, HasSubstr("cannot write \"" + file + "\": "));
  EXPECT_EQ(book::Backup::read(file).payments().count, 0);
  EXPECT_THAT(std::vector(fs::directory_iterator(folders_.home() / "stick"), {}), SizeIs(1));
  ASSERT_TRUE(disk.remount(0, "size=8m"));
  EXPECT_EQ(run({"backup", file}).status, 0);
  EXPECT_EQ(book::Backup::read(file).payments().count, 300);
}

TEST_F(ABackupOnASmallDisk, LeavesTheBookWhenThereIsNoRoomForTheRestoredOne) {
  const std::string file = folders_.home() / "book.kivo";
  addMuch();
  ASSERT_EQ(run({"backup", file}).status, 0);
  const fs::path folder = folders_.dataHome() / "app.kivo.ledger";
  fs::remove_all(folder);
  const testkit::SmallDisk disk(folder);
  if (!disk.isMounted()) GTEST_SKIP() << testkit::noSmallDisk;
  ASSERT_EQ(run({"add", "--amount", "7", "--payee", "Kiosk"}).status, 0);
  const ProgramResult failed = run({"restore", "--replace", file});
  EXPECT_EQ(failed.status, 1);
  EXPECT_THAT(failed.errors, HasSubstr("full"));
  EXPECT_EQ(paymentsInBook(), 1U);
  EXPECT_EQ(testkit::RawStore(folder / "ledger.sqlite3").run("PRAGMA integrity_check"), "ok\n");
  ASSERT_TRUE(disk.remount(0, "size=8m"));
  EXPECT_EQ(run({"restore", "--replace", file}).status, 0);
  EXPECT_EQ(paymentsInBook(), 300U);
}

}  // namespace
}  // namespace kivo
