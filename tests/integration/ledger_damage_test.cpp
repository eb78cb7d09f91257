// The real kivo-ledger with books that hold impossible values or are damaged.
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/process/child_process.h"
#include "testkit/damaged_tables.h"
#include "testkit/first_book.h"
#include "testkit/private_ledger.h"

namespace kivo::testkit {
namespace {

using linux_platform::ProgramResult;
using testing::HasSubstr;
using testing::Not;

class ADamagedLedger : public testing::Test {
 protected:
  static ProgramResult run(std::vector<std::string> arguments) {
    return linux_platform::runProgram({.program = linux_platform::programFolder() / "kivo-ledger",
                                       .arguments = std::move(arguments)});
  }

  PrivateLedger ledger_;
};

TEST_F(ADamagedLedger, ShowsTheOtherTransactionsWhenValuesOfSomeCannotBe) {
  makeFirstBook(ledger_.file(), firstBookRow("sound") + firstBookRow("date", "100", "2026-11") +
                                    firstBookRow("least", "-9223372036854775808") +
                                    firstBookRow("currency", "100", "2026-11-21", "expense", "X"));
  const std::string named =
      "kivo-ledger: these transactions are set aside and counted nowhere, since a value of each "
      "cannot be: 4, 3, 2; kivo-ledger show ID says which, edit or delete it\n";
  const std::string page = (ledger_.folders().home() / "report.html").string();
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {"report", "--month", "2026-11", "--no-open", "--output", page},
           {"summary", "--month", "2026-11"},
           {"summary", "--month", "2026-11", "--json"},
           {"list"},
           {"review"},
           {"export", "--format", "hledger"}}) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, 0) << arguments[0];
    EXPECT_EQ(result.errors, named) << arguments[0];
  }
  EXPECT_THAT(run({"summary", "--month", "2026-11"}).output, HasSubstr("150.00"));
  EXPECT_THAT(run({"show", "2"}).output, HasSubstr("set aside, since its date cannot be"));
  EXPECT_THAT(run({"accept", "2"}).errors, HasSubstr("it is set aside; kivo-ledger show 2 says"));
  EXPECT_THAT(run({"edit", "2", "--date", "2026-11-20"}).output, HasSubstr("in review"));
  EXPECT_THAT(run({"edit", "3", "--amount", "5"}).output, HasSubstr("in review"));
  EXPECT_EQ(run({"delete", "4", "--yes"}).status, 0);
  EXPECT_EQ(run({"accept", "2"}).output, "Booked as EGP 1.00.\n");
  EXPECT_EQ(run({"list"}).errors, "");
}

TEST_F(ADamagedLedger, TakesNoMessageUntilTheBookIsWhole) {
  {
    const auto server = ledger_.start();
    ASSERT_EQ(ledger_.post("KEY-1").status(), 200);
  }
  RawStore(ledger_.file()).run("PRAGMA wal_checkpoint(TRUNCATE)");
  const auto copy = ledger_.folders().home() / "copy";
  std::filesystem::copy_file(ledger_.file(), copy);
  testkit::damageTables(ledger_.file());
  const ProgramResult listed = run({"list"});
  EXPECT_EQ(listed.status, 1);
  EXPECT_THAT(listed.errors, HasSubstr(ledger_.file().string() + " is damaged: "));
  EXPECT_THAT(
      listed.errors,
      HasSubstr("; move its folder away, and restore a backup by kivo-ledger restore FILE"));
  const auto server = ledger_.start();
  EXPECT_EQ(ledger_.post("KEY-2").status(), 503);
  EXPECT_TRUE(std::filesystem::exists(ledger_.file().string() + "-damaged"));
  std::filesystem::remove(ledger_.file());
  std::filesystem::rename(copy, ledger_.file());
  EXPECT_EQ(ledger_.post("KEY-2").status(), 200);
  EXPECT_FALSE(std::filesystem::exists(ledger_.file().string() + "-damaged"));
}

TEST_F(ADamagedLedger, ExportsOneAccountForOneCategory) {
  {
    const auto server = ledger_.start();
    ledger_.post("KEY-1");
    ledger_.post("KEY-2", "Your card ending 4821 was charged EGP 20.00 at Nile Cinema.");
  }
  ASSERT_EQ(run({"edit", "2", "--category", "groceries"}).status, 0);
  const std::string journal = run({"export", "--format", "hledger"}).output;
  EXPECT_THAT(journal, HasSubstr("Expenses:Groceries"));
  EXPECT_THAT(journal, Not(HasSubstr("Expenses:groceries")));
}

}  // namespace
}  // namespace kivo::testkit
