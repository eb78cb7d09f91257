// The command line of kivo-intents.
#include <csignal>
#include <fstream>

#include "testkit/extension_program.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using ACommandLine = testkit::ExtensionProgram;

TEST_F(ACommandLine, PrintsTheHelpWhenNoCommandOrIntentIsNamed) {
  expectHelpInsteadOfCommand({}, "catalog");
  expectHelpInsteadOfCommand({"perform"}, "ProcessSMSIntent");
}

TEST_F(ACommandLine, RefusesAnUnknownCommandAndSuggestsTheNearest) {
  expectUsageError({"dance"}, "unknown command \"dance\" (see kivo-intents --help)");
  expectUsageError(
      {"preform", "ProcessSMSIntent", "--smsText", "x"},
      "unknown command \"preform\"; did you mean \"perform\"? (see kivo-intents --help)");
}

TEST_F(ACommandLine, RefusesAnUnknownIntentAndSuggestsTheNearest) {
  expectUsageError({"perform", "DanceIntent", "--smsText", "x"},
                   "unknown command \"perform DanceIntent\" (see kivo-intents perform --help)");
  expectUsageError({"perform", "ProcessSmsIntent", "--smsText", "x"},
                   "unknown command \"perform ProcessSmsIntent\"; did you mean \"perform "
                   "ProcessSMSIntent\"? (see kivo-intents perform --help)");
}

TEST_F(ACommandLine, AcceptsAnEmptyValueAfterAnEqualsSign) {
  signIn();
  const ProgramResult sms = run({"perform", "ProcessSMSIntent", "--smsText=", "--json"});
  EXPECT_EQ(sms.status, 0);
  EXPECT_EQ(sms.output, "{\"dialog\":\"No SMS text provided\"}\n");
  const ProgramResult payment =
      run({"perform", "AddExpenseIntent", "--amount", "5", "--merchant=", "--json"});
  EXPECT_EQ(payment.status, 0);
  EXPECT_EQ(payment.output, "{\"dialog\":\"No expense to track\"}\n");
  EXPECT_THAT(backend.requests(), IsEmpty());
}

TEST_F(ACommandLine, RefusesAnUnknownParameter) {
  expectUsageError({"perform", "ProcessSMSIntent", "--smsText", "x", "--merchant", "y"},
                   "unknown option --merchant (see kivo-intents perform ProcessSMSIntent --help)");
}

TEST_F(ACommandLine, RefusesAnAbbreviatedParameter) {
  expectUsageError({"perform", "ProcessSMSIntent", "--sms", "x"},
                   "unknown option --sms (see kivo-intents perform ProcessSMSIntent --help)");
}

TEST_F(ACommandLine, RefusesADuplicateParameter) {
  expectUsageError({"perform", "ProcessSMSIntent", "--smsText", "x", "--smsText", "y"},
                   "--smsText has no value or is given twice (see kivo-intents --help)");
}

TEST_F(ACommandLine, RefusesAParameterWithoutAValue) {
  expectUsageError({"perform", "ProcessSMSIntent", "--smsText"},
                   "--smsText has no value or is given twice (see kivo-intents --help)");
}

TEST_F(ACommandLine, RefusesAMissingParameterWithoutATerminal) {
  expectUsageError({"perform", "ProcessSMSIntent"}, "missing parameter --smsText");
}

TEST_F(ACommandLine, DoesNotRepeatAnUnquotedText) {
  expectUsageError(
      {"perform", "ProcessSMSIntent", "--smsText", "Paid", "7731", "at", "Secret"},
      "unexpected argument; put quotes around a text with blanks, and -- before one that begins "
      "with a minus (see kivo-intents perform ProcessSMSIntent --help)");
}

TEST_F(ACommandLine, AcceptsATextThatBeginsLikeAnOption) {
  signIn();
  EXPECT_EQ(run({"perform", "ProcessSMSIntent", "--smsText", "--json"}).output,
            "SMS ignored - not a transaction\n");
  ASSERT_THAT(backend.requests(), SizeIs(1));
  EXPECT_THAT(backend.requests()[0].body, HasSubstr(R"("sms_text":"--json")"));
}

TEST_F(ACommandLine, AcceptsAnEmptyText) {
  EXPECT_EQ(run({"perform", "ProcessSMSIntent", "--smsText", ""}).output, "No SMS text provided\n");
}

TEST_F(ACommandLine, AnswersAsOneJSONObjectWhenAskedTo) {
  signIn();
  backend.answers(200,
                  R"({"saved":true,"transaction_type":"income","expense":{"id":"1",)"
                  R"("description":"A \"B\"\nC","amount":1,"category":"","expense_date":""}})");
  const ProgramResult result = run({"perform", "ProcessSMSIntent", "--smsText", "x", "--json"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, testing::StartsWith(R"({"dialog":"Received )"));
  EXPECT_THAT(result.output, testing::EndsWith(R"( from A \"B\"\nC"})"
                                               "\n"));
}

TEST_F(ACommandLine, PrintsItsVersion) {
  EXPECT_EQ(run({"--version"}).output, "kivo-intents 0.1.0\n");
}

TEST_F(ACommandLine, HasHelpAtEachLevel) {
  EXPECT_THAT(run({"--help"}).output, HasSubstr("perform"));
  EXPECT_THAT(run({"perform", "--help"}).output, HasSubstr("ProcessSMSIntent"));
  const ProgramResult result = run({"perform", "ProcessSMSIntent", "--help"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, HasSubstr("--smsText"));
}

TEST_F(ACommandLine, ShowsControlCharactersOfADialogEscapedOnATerminal) {
  signIn();
  backend.answers(200, R"({"saved":true,"expense":{"id":"1","description":"A\u001b[2J\nB\u009b",)"
                       R"("amount":1,"category":"","expense_date":""}})");
  const ProgramResult result = onTerminal("perform ProcessSMSIntent --smsText x", "");
  EXPECT_THAT(result.output, HasSubstr(R"( at A\x1b[2J\nB\x9b)"));
}

TEST_F(ACommandLine, ShowsCharactersThatReorderADialogEscapedOnATerminal) {
  signIn();
  backend.answers(200, R"({"saved":true,"expense":{"id":"1","description":"Cafe \u202e05.7\u2069",)"
                       R"("amount":1,"category":"","expense_date":""}})");
  EXPECT_THAT(onTerminal("perform ProcessSMSIntent --smsText x", "").output,
              HasSubstr(R"( at Cafe \u202e05.7\u2069)"));
  EXPECT_THAT(onTerminal("perform ProcessSMSIntent --smsText x --json", "").output,
              HasSubstr(R"( at Cafe \u202e05.7\u2069"})"));
  EXPECT_THAT(run({"perform", "ProcessSMSIntent", "--smsText", "x"}).output,
              HasSubstr(" at Cafe \u202e05.7\u2069\n"));
}

TEST_F(ACommandLine, OmitsDirectionMarksOfAnAmountOnATerminal) {
  const testkit::ScopedVariable egyptian("LC_ALL", "ar_EG.UTF-8");
  signIn();
  backend.answers(200, testkit::savedAnswer("expense"));
  EXPECT_THAT(onTerminal("perform ProcessSMSIntent --smsText x", "").output,
              HasSubstr("Tracked ١٥٠٫٠٠\u00a0ج.م. at Carrefour"));
  EXPECT_THAT(run({"perform", "ProcessSMSIntent", "--smsText", "x"}).output,
              HasSubstr("Tracked \u200f١٥٠٫٠٠\u00a0ج.م.\u200f at Carrefour"));
}

TEST_F(ACommandLine, LeavesADialogUnescapedInAPipe) {
  signIn();
  backend.answers(200, R"({"saved":true,"expense":{"id":"1","description":"A\nB","amount":1,)"
                       R"("category":"","expense_date":""}})");
  EXPECT_THAT(processSMS("x").output, testing::EndsWith(" at A\nB\n"));
}

TEST_F(ACommandLine, KeepsTheStoreIntactWithStandardStreamsClosed) {
  signIn();
  backend.goAway();
  const ProgramResult result = linux_platform::runProgram(
      {.program = "sh",
       .arguments = {"-c", programFile() + " perform ProcessSMSIntent --smsText x <&- >&- 2>&-"}});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(queue(), SizeIs(1));
  std::ifstream file(folders.storeFile(), std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  EXPECT_THAT(bytes, testing::Not(HasSubstr("Saved offline")));
}

TEST_F(ACommandLine, IsPerformedAfterItsReaderCloses) {
  signIn();
  backend.goAway();
  EXPECT_EQ(
      linux_platform::runProgram(
          {.program = "sh",
           .arguments = {"-c", programFile() + " perform ProcessSMSIntent --smsText x | true"}})
          .status,
      0);
  EXPECT_THAT(queue(), SizeIs(1));
}

TEST_F(ACommandLine, SendsNothingWhenStandardInputCannotBeRead) {
  signIn();
  const std::string program = (linux_platform::programFolder() / "kivo-intents").string();
  const ProgramResult result = linux_platform::runProgram(
      {.program = "sh",
       .arguments = {"-c", "exec \"$0\" perform ProcessSMSIntent --smsText - < /", program}});
  EXPECT_EQ(result.status, 64);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "kivo-intents: --smsText could not be read to its end\n");
  EXPECT_THAT(backend.requests(), IsEmpty());
}

}  // namespace
}  // namespace kivo
