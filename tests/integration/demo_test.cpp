#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/process/child_process.h"
#include "testkit/private_folders.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

class TheDemonstration : public ::testing::Test {
 protected:
  ProgramResult demo(std::vector<std::string> arguments, std::string input = {}) {
    return linux_platform::runProgram(
        {.program = program_, .arguments = std::move(arguments), .input = std::move(input)});
  }

  // On a pseudo-terminal, which translates line ends.
  ProgramResult demoOnTerminal(const std::string& arguments,
                               std::optional<std::string> noColour = std::nullopt) {
    return linux_platform::runProgram(
        {.program = "script",
         .arguments = {"-qec", "'" + program_.string() + "' " + arguments, "/dev/null"},
         .environment = {{"NO_COLOR", std::move(noColour)}, {"TERM", "xterm"}}});
  }

  static void expectPlainText(const std::string& text) {
    for (const char character : text) {
      if (character == '\n') continue;
      ASSERT_GE(static_cast<unsigned char>(character), 0x20) << "in: " << text;
      ASSERT_NE(character, 0x7f);
    }
  }

  const std::filesystem::path program_ = linux_platform::programFolder() / "kivo-demo";
  testkit::PrivateFolders folders_;
  testkit::TemporaryFolder temporary_;
  testkit::ScopedVariable temporaryFolder_{"TMPDIR", temporary_.path().string()};
};

TEST_F(TheDemonstration, ShowsTheExpectedDialogs) {
  const ProgramResult result = demo({});
  EXPECT_EQ(result.status, 0) << result.output << result.errors;
  EXPECT_EQ(result.errors, "");
  for (const char* const dialog : {"Dialog       Tracked EGP\u00A0415.75 at Sunny Basket Market\n",
                                   "Dialog       Received EGP\u00A018,500.00 from شركة الأفق\n",
                                   "Dialog       Transaction was declined - not tracked\n",
                                   "Dialog       SMS ignored - not a transaction\n",
                                   "Dialog       Saved offline - will process when connected\n",
                                   "Dialog       Tracked EGP\u00A0230.00 at Blue Tram Taxi\n"}) {
    EXPECT_THAT(result.output, HasSubstr(dialog));
  }
  EXPECT_THAT(result.output, HasSubstr("Add Expense  Amount 42.5, merchant Lotus Bakery\n"
                                       "  Dialog       Tracked EGP\u00A042.50 at Lotus Bakery\n"));
  EXPECT_THAT(result.output, HasSubstr("AddExpenseIntent error: URLError cannotConnectToHost"));
  // From the queue, once the ledger is back.
  EXPECT_THAT(result.output, HasSubstr("EGP\u00A064.00 at Corner Coffee (Dining)\n"));
  EXPECT_THAT(result.output, HasSubstr("EGP\u00A018.75 at Papyrus Books ("));
  EXPECT_THAT(result.output, ContainsRegex("\nkivo-ledger list\n  ID  DATE [^\n]*\n  6   "));
  EXPECT_THAT(result.output,
              ContainsRegex("\n  2 [^\n]* income +18500.00 EGP  شركة الأفق  +Salary\n"
                            "  1 [^\n]* 415.75 EGP  Sunny Basket Market  Groceries\n"));
  EXPECT_THAT(result.output, HasSubstr("All went as expected"));
  EXPECT_THAT(result.output, Not(HasSubstr("UNEXPECTED")));
  expectPlainText(result.output);
}

TEST_F(TheDemonstration, BeginsWithASignIn) {
  const ProgramResult result = demo({});
  const std::size_t signIn =
      result.output.find("\nSign in\n  User         local\n  Backend      kivo-ledger");
  EXPECT_NE(signIn, std::string::npos) << result.output;
  EXPECT_LT(signIn, result.output.find("Bank SMS"));
}

TEST_F(TheDemonstration, LeavesNoFileAndPrintsNoPrivatePath) {
  const ProgramResult result = demo({"Paid 25.0 EGP at Cafe"});
  EXPECT_EQ(result.status, 0) << result.output << result.errors;
  EXPECT_TRUE(std::filesystem::is_empty(temporary_.path()));
  EXPECT_FALSE(std::filesystem::exists(folders_.storeFile()));
  EXPECT_THAT(result.output + result.errors, Not(HasSubstr("/kivo-")));
}

TEST_F(TheDemonstration, ProcessesATextFromItsArguments) {
  const ProgramResult result = demo({"Purchase of SAR 86.50 at Oasis Coffee"});
  EXPECT_EQ(result.status, 0) << result.output << result.errors;
  EXPECT_THAT(result.output, HasSubstr("Dialog       Tracked SAR\u00A086.50 at Oasis Coffee\n"));
  EXPECT_THAT(result.output, HasSubstr("SAR\u00A086.50 at Oasis Coffee (Dining)\n"));
  expectPlainText(result.output);
}

TEST_F(TheDemonstration, ListsATransactionThatIsBooked) {
  const ProgramResult result = demo({"Purchase of SAR 86.50 at Oasis Coffee"});
  EXPECT_THAT(result.output, ContainsRegex("\nkivo-ledger list\n  ID [^\n]*\n"
                                           "  1 [^\n]* 86.50 SAR  Oasis Coffee  Dining\n$"));
}

TEST_F(TheDemonstration, ShowsTheReviewListForAnUnclearMessage) {
  const ProgramResult result = demo({"You paid USD 20.00 or EGP 1000.00 at Oasis Coffee"});
  EXPECT_EQ(result.status, 0) << result.output << result.errors;
  EXPECT_THAT(result.output, HasSubstr("Notification 🔎 Needs a look\n"));
  EXPECT_THAT(result.output, ContainsRegex("\nkivo-ledger review\n  ID [^\n]*\n"
                                           "  1 [^\n]* 20.00 USD  Oasis Coffee  Dining\n$"));
  EXPECT_THAT(result.output, Not(HasSubstr("kivo-ledger list")));
}

TEST_F(TheDemonstration, ProcessesAnyBytesFromStandardInput) {
  const ProgramResult result = demo({"-"}, "Purchase of\nEGP 86.50\x1b[31m \xff at Oasis Coffee\n");
  EXPECT_EQ(result.status, 0) << result.output << result.errors;
  EXPECT_THAT(result.output, HasSubstr("EGP 86.50\\x1b[31m \uFFFD at Oasis Coffee\n"));
  EXPECT_THAT(result.output, HasSubstr("Dialog       Tracked EGP\u00A086.50 at Oasis Coffee\n"));
  expectPlainText(result.output);
}

TEST_F(TheDemonstration, ShowsThatATextIsNotATransaction) {
  const ProgramResult result = demo({"--", "Lunch at 1?"});
  EXPECT_EQ(result.status, 0) << result.output << result.errors;
  EXPECT_THAT(result.output, HasSubstr("Dialog       SMS ignored - not a transaction\n"));
  EXPECT_THAT(result.output, Not(HasSubstr("Notification")));
  EXPECT_THAT(result.output, Not(HasSubstr("kivo-ledger")));
}

TEST_F(TheDemonstration, FormatsAmountsByTheLocale) {
  const testkit::ScopedVariable german("LC_ALL", "de_DE.UTF-8");
  EXPECT_THAT(demo({"Card payment of EUR 1,234.56 at Hotel Alpenblick"}).output,
              HasSubstr("Tracked 1.234,56\u00A0€ at Hotel Alpenblick\n"));
}

TEST_F(TheDemonstration, IsInColourOnATerminal) {
  const ProgramResult result = demoOnTerminal("'Lunch at 1?'");
  EXPECT_EQ(result.status, 0) << result.output << result.errors;
  EXPECT_THAT(result.output, ContainsRegex("\x1b\\[1;32mSMS ignored - not a transaction\x1b\\[0m"));
}

TEST_F(TheDemonstration, IsPlainOnATerminalWithoutColour) {
  const ProgramResult result = demoOnTerminal("'Lunch at 1?'", "1");
  EXPECT_EQ(result.status, 0) << result.output << result.errors;
  EXPECT_THAT(result.output, HasSubstr("SMS ignored - not a transaction"));
  EXPECT_THAT(result.output, Not(HasSubstr("\x1b")));
}

TEST_F(TheDemonstration, EndsCleanlyWhenItIsInterrupted) {
  linux_platform::ChildProcess child({.program = program_});
  for (int waited = 0; child.outputSoFar().find("Dialog") == std::string::npos; ++waited) {
    ASSERT_LT(waited, 3000) << "no dialog";
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  child.signal(SIGINT);
  const ProgramResult result = child.wait();
  EXPECT_EQ(result.status, 130);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, Not(HasSubstr("UNEXPECTED")));
  EXPECT_TRUE(std::filesystem::is_empty(temporary_.path()));
}

TEST_F(TheDemonstration, PrintsHelpAndRefusesUnknownOptions) {
  EXPECT_THAT(demo({"--help"}).output, HasSubstr("Usage: kivo-demo"));
  EXPECT_THAT(demo({"--version"}).output, ContainsRegex("^kivo-demo [0-9.]+\n$"));
  for (const auto& arguments : {std::vector<std::string>{"--unknown"}, {"two", "words"}}) {
    const ProgramResult result = demo(arguments);
    EXPECT_EQ(result.status, 64);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, ContainsRegex("^kivo-demo: [^\n]+\n$"));
  }
}

}  // namespace
}  // namespace kivo
