// Several transactions at a time: `kivo-ledger accept`, `edit` and `delete` with ids and ranges.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "platform/linux/process/child_process.h"
#include "testkit/private_ledger.h"
#include "testkit/raw_store.h"

namespace kivo::testkit {
namespace {

using linux_platform::ProgramResult;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class SeveralTransactions : public testing::Test {
 protected:
  static std::string program() { return linux_platform::programFolder() / "kivo-ledger"; }
  static ProgramResult run(std::vector<std::string> arguments) {
    return linux_platform::runProgram({.program = program(), .arguments = std::move(arguments)});
  }
  // The output of a command that has to succeed.
  static std::string shown(std::vector<std::string> arguments) {
    const ProgramResult result = run(std::move(arguments));
    EXPECT_EQ(result.status, 0) << result.errors;
    return result.output;
  }
  static ProgramResult onTerminal(const std::string& arguments, const std::string& typed) {
    return linux_platform::runProgram({.program = "script",
                                       .arguments = {"--quiet", "--return", "--command",
                                                     program() + " " + arguments, "/dev/null"},
                                       .input = typed});
  }
  // `count` booked entries of 1.00, 2.00 and so on.
  static void add(int count) {
    for (int number = 1; number <= count; ++number) {
      shown({"add", "--date", "2026-11-02", "--amount", std::to_string(number), "--payee",
             "Zed Corner"});
    }
  }
  void putInReview() const {
    RawStore(ledger_.file()).run("UPDATE transactions SET state = 'review'");
  }
  // The ids that `command` shows.
  static std::vector<std::string> idsOf(const std::string& command) {
    std::vector<std::string> ids;
    for (const auto& entry : nlohmann::json::parse(shown({command, "--json"}))) {
      ids.push_back(entry["id"]);
    }
    return ids;
  }
  static void expectFailure(const std::vector<std::string>& arguments, int status,
                            const std::string& error) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "kivo-ledger: " + error + "\n");
  }

  PrivateLedger ledger_;
};

TEST_F(SeveralTransactions, AreAcceptedWithALineEach) {
  add(5);
  putInReview();
  EXPECT_EQ(shown({"accept", "5", "1-2", "2"}),
            "1: Booked as EGP 1.00.\n2: Booked as EGP 2.00.\n5: Booked as EGP 5.00.\n");
  EXPECT_THAT(idsOf("list"), ElementsAre("5", "2", "1"));
  EXPECT_EQ(shown({"accept", "3"}), "Booked as EGP 3.00.\n");
}

TEST_F(SeveralTransactions, AreEditedTogetherAndListed) {
  add(3);
  const std::string edited = shown({"edit", "1", "3", "--category", "Fun"});
  EXPECT_EQ(edited,
            "ID  DATE        KIND       AMOUNT  DESCRIPTION  CATEGORY\n"
            "1   2026-11-02  expense  1.00 EGP  Zed Corner   Fun\n"
            "3   2026-11-02  expense  3.00 EGP  Zed Corner   Fun\n"
            "\nLater payments to Zed Corner will be Fun. `kivo-ledger rules` shows it.\n"
            "1 earlier one stays as it is; with --also-earlier, it changes too.\n");
  EXPECT_THAT(shown({"show", "2"}), HasSubstr("Category     Other\n"));
}

TEST_F(SeveralTransactions, AreDeletedTogether) {
  add(4);
  EXPECT_EQ(shown({"delete", "--yes", "2-3", "1"}), "1: Deleted.\n2: Deleted.\n3: Deleted.\n");
  EXPECT_THAT(idsOf("list"), ElementsAre("4"));
}

TEST_F(SeveralTransactions, AreAskedAboutOnce) {
  add(3);
  const ProgramResult kept = onTerminal("delete 1-2", "n\n");
  EXPECT_EQ(kept.status, 1);
  EXPECT_THAT(kept.output, HasSubstr("2.00 EGP  Zed Corner"));
  EXPECT_THAT(kept.output, HasSubstr("Delete these 2 transactions?"));
  EXPECT_THAT(kept.output, EndsWith("kivo-ledger: nothing was deleted\r\n"));
  EXPECT_THAT(idsOf("list"), ElementsAre("3", "2", "1"));
  const ProgramResult deleted = onTerminal("delete 1-2", "y\n");
  EXPECT_EQ(deleted.status, 0);
  EXPECT_THAT(idsOf("list"), ElementsAre("3"));
}

TEST_F(SeveralTransactions, AreOnlyCountedInTheQuestionWhenTheyAreMany) {
  add(11);
  const ProgramResult kept = onTerminal("delete 1-11", "n\n");
  EXPECT_THAT(kept.output, HasSubstr("Delete these 11 transactions?"));
  EXPECT_THAT(kept.output, Not(HasSubstr("Zed Corner")));
}

TEST_F(SeveralTransactions, StayAsTheyAreWhenOneDoesNotExist) {
  add(2);
  putInReview();
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"accept"}, {"delete", "--yes"}, {"edit", "--category", "Fun"}}) {
    std::vector<std::string> arguments = command;
    arguments.insert(arguments.end(), {"1", "2", "9"});
    expectFailure(arguments, 1, "no transaction has the ID 9");
    arguments.back() = "3-9";
    expectFailure(arguments, 1, "no transaction has an ID from 3 to 9");
  }
  EXPECT_THAT(idsOf("review"), ElementsAre("2", "1"));
  EXPECT_THAT(shown({"show", "1"}), HasSubstr("Category     Other\n"));
}

TEST_F(SeveralTransactions, MayBeARangeWithGaps) {
  add(4);
  shown({"delete", "--yes", "2"});
  EXPECT_EQ(shown({"delete", "--yes", "1-3"}), "1: Deleted.\n3: Deleted.\n");
}

TEST_F(SeveralTransactions, StayInReviewWhenOneCannotBeAccepted) {
  add(3);
  putInReview();
  RawStore(ledger_.file())
      .run("UPDATE transactions SET minor_units = NULL, currency = '' WHERE id = 2");
  expectFailure(
      {"accept", "1-3"}, 1,
      "2: its sum is unknown; kivo-ledger edit 2 --amount gives it one; nothing was changed");
  EXPECT_THAT(idsOf("list"), IsEmpty());
}

TEST_F(SeveralTransactions, StayAsTheyAreWhenOneCannotBeEdited) {
  add(2);
  RawStore(ledger_.file()).run("UPDATE transactions SET currency = 'USD' WHERE id = 2");
  expectFailure(
      {"edit", "1-2", "--currency", "EGP", "--category", "Fun"}, 64,
      "2: there is no rate for USD on 2026-11-02: set it by kivo-ledger rate USD RATE, or give "
      "the sum in EGP by --amount; nothing was changed");
  EXPECT_THAT(shown({"show", "1"}), HasSubstr("Category     Other\n"));
}

TEST_F(SeveralTransactions, AreRefusedForAnInvalidRange) {
  add(2);
  expectFailure({"delete", "--yes", "1", "x"}, 64,
                "invalid ID \"x\": it must be a number such as 3, as list and review show it, or a "
                "range such as 3-9");
  expectFailure({"delete", "--yes", "2-1"}, 64,
                "invalid ID \"2-1\": it must be a range with the smaller number first");
  expectFailure({"delete", "--yes", "1-5000"}, 64,
                "invalid ID \"1-5000\": it must be a range of 1000 numbers at most");
  EXPECT_THAT(idsOf("list"), ElementsAre("2", "1"));
}

}  // namespace
}  // namespace kivo::testkit
