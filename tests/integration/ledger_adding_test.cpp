// Payments that are entered by hand: `kivo-ledger add`.
#include <csignal>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "book/current_day.h"
#include "platform/linux/process/child_process.h"
#include "testkit/private_ledger.h"

// The merchants and people below do not exist.

namespace kivo::testkit {
namespace {

using linux_platform::ProgramResult;
using testing::HasSubstr;
using testing::Not;

class APaymentAddedByHand : public testing::Test {
 protected:
  static ProgramResult run(std::vector<std::string> arguments) {
    return linux_platform::runProgram({.program = linux_platform::programFolder() / "kivo-ledger",
                                       .arguments = std::move(arguments)});
  }
  // The output of a command that has to succeed.
  static std::string shown(std::vector<std::string> arguments) {
    const ProgramResult result = run(std::move(arguments));
    EXPECT_EQ(result.status, 0) << result.errors;
    return result.output;
  }
  static nlohmann::json entry(const std::string& id) {
    return nlohmann::json::parse(shown({"show", id, "--json"}));
  }
  static void expectFailure(const std::vector<std::string>& arguments, int status,
                            const std::string& error) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, HasSubstr(error));
    EXPECT_EQ(shown({"list", "--json"}), "[]\n");
    EXPECT_EQ(shown({"review", "--json"}), "[]\n");
  }

  PrivateLedger ledger_;
};

TEST_F(APaymentAddedByHand, IsAnExpenseOfTodayInTheBooksCurrency) {
  EXPECT_EQ(shown({"add", "--amount", "1,189.50", "--payee", "Moon Pharmacy"}),
            "Booked as EGP 1189.50. ID 1.\n");
  const nlohmann::json added = entry("1");
  EXPECT_EQ(added["date"], book::currentDay().text());
  EXPECT_EQ(added["kind"], "expense");
  EXPECT_EQ(added["amount"], "1189.50");
  EXPECT_EQ(added["description"], "Moon Pharmacy");
  EXPECT_EQ(added["category"], "Health");
  EXPECT_EQ(added["account"], "");
  EXPECT_EQ(added["state"], "booked");
}

TEST_F(APaymentAddedByHand, TakesEachOption) {
  shown({"add", "--amount", "20", "--payee", "Aunt Mona", "--date", "2026-11-02", "--kind",
         "income", "--category", "Gifts", "--account", "4821"});
  const nlohmann::json added = entry("1");
  EXPECT_EQ(added["date"], "2026-11-02");
  EXPECT_EQ(added["kind"], "income");
  EXPECT_EQ(added["category"], "Gifts");
  EXPECT_EQ(added["account"], "4821");
  shown({"add", "--amount", "7", "--payee", "aunt mona", "--kind", "income"});
  EXPECT_EQ(entry("2")["category"], "Gifts");
}

TEST_F(APaymentAddedByHand, IsShownWithoutAMessage) {
  shown({"add", "--amount", "20", "--payee", "Zed Corner", "--date", "2026-11-02"});
  const std::string details = shown({"show", "1"});
  EXPECT_THAT(details, HasSubstr("Payee        Zed Corner\n"));
  EXPECT_THAT(details, HasSubstr("Key          by-hand-"));
  EXPECT_THAT(details, Not(HasSubstr("\n\n")));
}

TEST_F(APaymentAddedByHand, IsMarkedWhenItLooksLikeAMessages) {
  {
    const auto server = ledger_.start();
    ASSERT_EQ(ledger_.post("KEY-1").status(), 200);
    server->signal(SIGTERM);
    EXPECT_EQ(server->wait().status, 0);
  }
  EXPECT_EQ(shown({"add", "--amount", "150", "--payee", "carrefour city", "--date", "2026-11-21"}),
            "Booked as EGP 150.00. ID 2, looks like 1.\n");
  EXPECT_EQ(entry("2")["possible_duplicate_of"], "1");
}

TEST_F(APaymentAddedByHand, IsConvertedWhenARateIsSet) {
  EXPECT_EQ(shown({"add", "--amount", "20", "--currency", "usd", "--payee", "Zed Corner"}),
            "Booked as USD 20.00. ID 1.\n");
  shown({"rate", "USD", "48.5"});
  EXPECT_EQ(shown({"add", "--amount", "20", "--currency", "usd", "--payee", "Zed Corner"}),
            "Booked as EGP 970.00 at the rate 48.5. ID 2.\n");
}

TEST_F(APaymentAddedByHand, IsExportedAsOthersAre) {
  shown({"add", "--amount", "20", "--payee", "Zed Corner", "--date", "2026-11-02"});
  EXPECT_THAT(shown({"export", "--format", "csv"}),
              HasSubstr("\n2026-11-02,expense,20.00,EGP,Zed Corner,Other,,,1\n"));
  EXPECT_THAT(shown({"export", "--format", "ofx"}), HasSubstr("<FITID>1-"));
}

TEST_F(APaymentAddedByHand, NeedsAnAmountAndAPayee) {
  expectFailure({"add", "--payee", "Zed Corner"}, 64, "--amount is missing");
  expectFailure({"add", "--amount", "20"}, 64, "--payee is missing");
  expectFailure({"add", "--amount", "20", "--payee", ""}, 64, "--payee is empty");
  expectFailure({"add", "--amount", "20", "--payee", " "}, 64, "--payee is blank");
}

TEST_F(APaymentAddedByHand, IsRefusedWithTheWordThatIsWrong) {
  const std::vector<std::string> cash = {"add", "--amount", "20", "--payee", "Zed Corner"};
  const std::vector<std::pair<std::string, std::string>> wrong = {
      {"--date", "yesterday"}, {"--kind", "gift"}, {"--account", "IBAN"}, {"--currency", "EURO"}};
  for (const auto& [option, value] : wrong) {
    std::vector<std::string> arguments = cash;
    arguments.insert(arguments.end(), {option, value});
    expectFailure(arguments, 64, "invalid " + option + " \"" + value + "\": it must be ");
  }
  for (const char* sum : {"0", "-5", "1e3", "1.005", "20 EGP"}) {
    expectFailure({"add", std::string("--amount=") + sum, "--payee", "Zed Corner"}, 64,
                  std::string("invalid --amount \"") + sum + "\": it must be a sum above zero");
  }
}

TEST_F(APaymentAddedByHand, IsNotKeptWhenItsRateLeavesNothingOfIt) {
  shown({"rate", "USD", "0.0001"});
  expectFailure({"add", "--amount", "0.01", "--currency", "USD", "--payee", "Zed Corner"}, 1,
                "its sum cannot be converted at its rate: give the sum in EGP by --amount");
}

}  // namespace
}  // namespace kivo::testkit
