// kivo-intents say: performs the intent of a phrase.
#include "testkit/extension_program.h"

namespace kivo {
namespace {

using testing::ElementsAre;

using ASpokenPhrase = testkit::ExtensionProgram;

TEST_F(ASpokenPhrase, IsPerformedWithItsParameters) {
  signIn();
  expectAnswered(run({"say", "Log expense to Kivo", "--amount", "12.5", "--merchant", "Cafe"}),
                 "Failed to track expense");
  expectAnswered(run({"say", "process bank sms in KIVO.", "--smsText", "-"}, "Paid 150\n"),
                 "SMS ignored - not a transaction");
  EXPECT_THAT(sent("sms_text"), ElementsAre("Paid 12.5 EGP at Cafe", "Paid 150\n"));
}

TEST_F(ASpokenPhrase, IsAnsweredAsOneJSONObjectWhenAskedTo) {
  signIn();
  expectAnswered(run({"say", "Add expense in Kivo", "--amount", "0", "--merchant", "x", "--json"}),
                 R"({"dialog":"No expense to track"})");
}

TEST_F(ASpokenPhrase, ListsAllPhrasesWhenUnknown) {
  expectUsageError({"say", "Buy me a coffee with Kivo", "--smsText", "x"},
                   "unknown phrase; the phrases are:\n"
                   "  Add expense in Kivo\n"
                   "  Log expense to Kivo\n"
                   "  Track purchase with Kivo\n"
                   "  Record expense in Kivo\n"
                   "  Process bank SMS in Kivo\n"
                   "  Extract expense from SMS in Kivo\n"
                   "  Track SMS transaction in Kivo");
}

TEST_F(ASpokenPhrase, RefusesAParameterOfAnotherIntent) {
  expectUsageError(
      {"say", "Log expense to Kivo", "--amount", "5", "--merchant", "Cafe", "--smsText", "x"},
      "unknown parameter --smsText");
  expectUsageError({"say", "Process bank SMS in Kivo", "--smsText", "x", "--amount", "5"},
                   "unknown parameter --amount");
}

TEST_F(ASpokenPhrase, NeedsItsParametersWithoutATerminal) {
  expectUsageError({"say", "Log expense to Kivo"}, "missing parameter --amount");
}

TEST_F(ASpokenPhrase, PromptsForItsParametersOnATerminal) {
  signIn();
  EXPECT_EQ(onTerminal("say 'log expense to kivo'", "12.5\nCafe\n").status, 0);
  EXPECT_THAT(sent("sms_text"), ElementsAre("Paid 12.5 EGP at Cafe"));
}

TEST_F(ASpokenPhrase, IsRequiredByTheCommand) {
  expectUsageError({"say"}, "SENTENCE is missing (see kivo-intents say --help)");
}

}  // namespace
}  // namespace kivo
