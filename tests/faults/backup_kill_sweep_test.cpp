// `kivo-ledger backup` and `restore` killed at each of their system calls: whether file and book
// are whole.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "book/book.h"
#include "book/book_backup.h"
#include "faulted_program.h"
#include "testkit/private_folders.h"
#include "testkit/raw_store.h"
#include "testkit/stored_bytes.h"

namespace kivo {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;
using testkit::Fault;

// A book of two payments, and a backup of the time when it had one.
class AKilledBackup : public testing::Test {
 protected:
  static constexpr const char* later = "Zebra Corner";

  void SetUp() override {
    if (const std::string reason = testkit::whyNoFaults(); !reason.empty()) GTEST_SKIP() << reason;
    run({"add", "--amount", "7", "--payee", "Kiosk"});
    run({"backup", file()});
    fs::copy_file(file(), old());
    run({"add", "--amount", "8", "--payee", later});
    fs::copy(folders_.dataHome(), kept(), fs::copy_options::recursive);
  }

  // Kills the command at call after call until one run comes through, each from the same state.
  template <typename Check>
  void sweep(const std::vector<std::string>& command, const Check& expectWhole) {
    testkit::CallNumbers numbers;
    for (const char* const call : testkit::sweptCalls) {
      int status = -1;
      for (int number = numbers.first(); status != 0 && number < 2000; number += numbers.step()) {
        const Fault fault{.call = call, .effect = "signal=SIGKILL", .number = number};
        SCOPED_TRACE(testkit::wordsFor(fault));
        begin();
        status =
            linux_platform::runProgram(testkit::withFault(fault, ledger(command), book())).status;
        expectWhole(status);
        if (HasFailure()) return;
        kills_ += status == 128 + SIGKILL ? 1 : 0;
      }
      EXPECT_EQ(status, 0) << "no run came through";
    }
    std::cout << "killed " << kills_ << " commands, " << late_ << " of them late\n";
    EXPECT_GE(kills_, testkit::isLongForm() ? 100 : 1);
    EXPECT_GE(late_, testkit::isLongForm() ? 1 : 0);
  }

  static linux_platform::ProgramCall ledger(std::vector<std::string> arguments) {
    return {.program = linux_platform::programFolder() / "kivo-ledger",
            .arguments = std::move(arguments)};
  }
  static void run(std::vector<std::string> arguments) {
    EXPECT_EQ(linux_platform::runProgram(ledger(std::move(arguments))).status, 0);
  }
  void begin() const {
    fs::remove_all(folders_.dataHome());
    fs::copy(kept(), folders_.dataHome(), fs::copy_options::recursive);
    fs::copy_file(old(), file(), fs::copy_options::overwrite_existing);
  }
  static std::size_t paymentsInBook() { return book::Book::open().entries({}).size(); }

  [[nodiscard]] std::string file() const { return folders_.home() / "book.kivo"; }
  [[nodiscard]] fs::path old() const { return folders_.home() / "old.kivo"; }
  [[nodiscard]] fs::path kept() const { return folders_.home() / "kept"; }
  [[nodiscard]] fs::path book() const {
    return folders_.dataHome() / "app.kivo.ledger" / "ledger.sqlite3";
  }
  // The backups from before a restore.
  [[nodiscard]] std::vector<fs::path> saved() const {
    std::vector<fs::path> found;
    std::error_code ignored;
    for (const auto& entry :
         fs::directory_iterator(folders_.dataHome() / "kivo-backups", ignored)) {
      if (entry.path().extension() == ".kivo") found.push_back(entry.path());
    }
    return found;
  }

  testkit::PrivateFolders folders_;
  int kills_ = 0;
  // Those that were killed once their work was done.
  int late_ = 0;
};

TEST_F(AKilledBackup, IsTheOldFileOrTheNewOne) {
  sweep({"backup", file()}, [this](int status) {
    const auto count = book::Backup::read(file()).payments().count;
    EXPECT_TRUE(count == 2 || (count == 1 && status != 0)) << count;
    EXPECT_EQ(paymentsInBook(), 2U);
    late_ += count == 2 && status != 0 ? 1 : 0;
  });
}

TEST_F(AKilledBackup, LeavesTheOldBookOrTheRestoredOne) {
  sweep({"restore", file(), "--replace"}, [this](int status) {
    const std::size_t count = paymentsInBook();
    EXPECT_EQ(testkit::RawStore(book()).run("PRAGMA integrity_check"), "ok\n");
    for (const fs::path& path : saved()) {
      EXPECT_EQ(book::Backup::read(path).payments().count, 2);
    }
    EXPECT_EQ(book::Backup::read(file()).payments().count, 1);
    if (status != 0 && count == 2) return;
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(saved().size(), 1U);
    EXPECT_THAT(testkit::bytesIn(book().parent_path()), Not(HasSubstr(later)));
    late_ += status != 0 ? 1 : 0;
  });
}

}  // namespace
}  // namespace kivo
