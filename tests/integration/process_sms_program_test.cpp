// Each outcome of a bank SMS, through the real program.
#include <csignal>
#include <fstream>

#include "feedback/amount_formatter.h"
#include "platform/foundation/json_decoder.h"
#include "testkit/extension_program.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ProcessSMSByProgram : public testkit::ExtensionProgram {
 protected:
  static void expectSavedOffline(const ProgramResult& result, const std::string& error) {
    expectAnswered(result, "ProcessSMSIntent error: " + error +
                               "\nSaved offline - will process when connected");
  }
};

TEST_F(ProcessSMSByProgram, ASavedExpenseIsTrackedAndCounted) {
  signIn();
  backend.answers(200, testkit::savedAnswer("expense"));
  const std::string amount = AmountFormatter::format(store(), 150);
  expectAnswered(processSMS("Paid 150"), "Tracked " + amount + " at Carrefour");
  EXPECT_EQ(text(StoreKeys::todayTotal), "150.0");
  EXPECT_EQ(text(StoreKeys::todayCount), "1");
  EXPECT_EQ(text(StoreKeys::monthlyTotal), "150.0");
}

TEST_F(ProcessSMSByProgram, ASavedIncomeIsReceivedAndNotCounted) {
  signIn();
  backend.answers(200, testkit::savedAnswer("income"));
  const std::string amount = AmountFormatter::format(store(), 150);
  expectAnswered(processSMS("Salary 150"), "Received " + amount + " from Carrefour");
  EXPECT_EQ(text(StoreKeys::todayTotal), "-");
}

TEST_F(ProcessSMSByProgram, ASavedTransactionOfAnotherTypeIsTrackedAndNotCounted) {
  signIn();
  backend.answers(200, testkit::savedAnswer("transfer"));
  const std::string amount = AmountFormatter::format(store(), 150);
  expectAnswered(processSMS("Transfer 150"), "Tracked " + amount + " at Carrefour");
  EXPECT_EQ(text(StoreKeys::todayTotal), "-");
}

TEST_F(ProcessSMSByProgram, AnExcludedCategoryIsTrackedAndNotCounted) {
  signIn();
  backend.answers(200, testkit::savedAnswer("expense", "Credit Card Settlement"));
  const std::string amount = AmountFormatter::format(store(), 150);
  expectAnswered(processSMS("Paid 150"), "Tracked " + amount + " at Carrefour");
  EXPECT_EQ(text(StoreKeys::todayTotal), "-");
}

TEST_F(ProcessSMSByProgram, ADeclinedTransactionIsNotTracked) {
  signIn();
  backend.answers(200, R"({"saved":false,"reason":"declined"})");
  expectAnswered(processSMS("Declined"), "Transaction was declined - not tracked");
  EXPECT_THAT(queue(), IsEmpty());
}

TEST_F(ProcessSMSByProgram, ATextWithoutATransactionIsIgnored) {
  signIn();
  backend.answers(200, R"({"saved":false})");
  expectAnswered(processSMS("Your code is 1234"), "SMS ignored - not a transaction");
  EXPECT_THAT(queue(), IsEmpty());
}

TEST_F(ProcessSMSByProgram, ATextOfBlanksCountsAsEmpty) {
  signIn();
  expectAnswered(processSMS(" \t\u00a0\u3000"), "No SMS text provided");
  EXPECT_THAT(backend.requests(), IsEmpty());
}

TEST_F(ProcessSMSByProgram, ATextOfLineBreaksOnlyIsSent) {
  signIn();
  expectAnswered(processSMS("\n\n"), "SMS ignored - not a transaction");
  ASSERT_THAT(backend.requests(), SizeIs(1));
}

TEST_F(ProcessSMSByProgram, AStoreThatCannotBeOpenedIsReportedWithTheReason) {
  std::filesystem::create_directories(folders.home());
  std::ofstream(folders.dataHome()) << "a file where the folder should be";
  const ProgramResult result = processSMS("Paid 150");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "Failed to access app storage\n");
  EXPECT_EQ(result.errors,
            "kivo-intents: cannot open the store: " + folders.storeFile().parent_path().string() +
                " cannot be created: Not a directory\n");
}

TEST_F(ProcessSMSByProgram, ASignedOutUserIsAskedToSignIn) {
  expectAnswered(processSMS("Paid 150"), "Please open Kivo app and sign in first");
  signIn("");
  expectAnswered(processSMS("Paid 150"), "Please open Kivo app and sign in first");
}

TEST_F(ProcessSMSByProgram, AnUnreachableBackendLeavesTheTextQueued) {
  signIn();
  backend.goAway();
  expectSavedOffline(processSMS(" Paid 150 \n"),
                     "URLError cannotConnectToHost: The host did not take the connection");
  const auto queued = queue();
  ASSERT_THAT(queued, SizeIs(1));
  EXPECT_EQ(queued[0].smsText, " Paid 150 \n");
  EXPECT_EQ(queued[0].retryCount, 0);
  EXPECT_EQ(queued[0].source, "sms");
  EXPECT_EQ(text(StoreKeys::pendingSmsQueueCount), "1");
}

TEST_F(ProcessSMSByProgram, AStatusOtherThan200LeavesTheTextQueuedUnderItsKey) {
  signIn();
  backend.answers(503, testkit::savedAnswer("expense"));
  expectSavedOffline(processSMS("Paid 150"),
                     R"(Error Domain=SMSExtraction Code=500 "Failed to extract SMS")");
  ASSERT_THAT(backend.requests(), SizeIs(1));
  ASSERT_THAT(queue(), SizeIs(1));
  const auto sent = platform::JSONDecoder::object(backend.requests()[0].body);
  EXPECT_EQ(queue()[0].id, sent.decodeString("idempotency_key"));
  EXPECT_EQ(queue()[0].expenseDate, sent.decodeString("expense_date"));
}

TEST_F(ProcessSMSByProgram, AnInvalidAnswerLeavesTheTextQueued) {
  signIn();
  backend.answers(200, R"({"error":"down"})");
  expectSavedOffline(processSMS("Paid 150"), "DecodingError keyNotFound at saved");
  backend.answers(200, "<html>");
  EXPECT_THAT(processSMS("Paid 151").output, testing::HasSubstr("DecodingError dataCorrupted"));
  backend.answers(200, std::string(900'000, '['));
  EXPECT_THAT(processSMS("Paid 152").output, testing::HasSubstr("DecodingError dataCorrupted"));
  EXPECT_THAT(queue(), SizeIs(3));
}

TEST_F(ProcessSMSByProgram, ALaterSavedRunSendsQueuedTextsUnderTheirKeys) {
  signIn();
  backend.goAway();
  EXPECT_EQ(processSMS("Paid 1").status, 0);
  EXPECT_EQ(processSMS("Paid 2").status, 0);
  const auto waiting = queue();
  ASSERT_THAT(waiting, SizeIs(2));

  backend.comeBack();
  backend.answers(200, testkit::savedAnswer("expense"));
  EXPECT_EQ(processSMS("Paid 3").status, 0);
  const auto keys = sent("idempotency_key");
  ASSERT_THAT(keys, SizeIs(3));
  EXPECT_THAT(std::vector(keys.begin() + 1, keys.end()), ElementsAre(waiting[0].id, waiting[1].id));
  EXPECT_THAT(queue(), IsEmpty());
  EXPECT_EQ(text(StoreKeys::todayCount), "1");  // texts from the queue are not counted
  EXPECT_EQ(store().readFloat(StoreKeys::smsQueueDrainLock), 0);
}

TEST_F(ProcessSMSByProgram, ABaseURLThatCannotBeParsedStopsTheProcess) {
  signIn("http://exa mple");
  const ProgramResult result = processSMS("Paid 150");
  EXPECT_EQ(result.status, 128 + SIGABRT);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "fatal: the stored base URL of the backend cannot be parsed\n");
}

TEST_F(ProcessSMSByProgram, AHostNameThatBeginsLikeAnAddressIsLookedUp) {
  const std::string port = backend.url().substr(backend.url().rfind(':'));
  signIn("http://127.0.0.1.nip.invalid" + port);
  const ProgramResult result = processSMS("Paid 150");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, testing::EndsWith("\nSaved offline - will process when connected\n"));
  EXPECT_THAT(result.output, testing::AnyOf(testing::HasSubstr("URLError cannotFindHost"),
                                            testing::HasSubstr("URLError timedOut")));
  EXPECT_THAT(backend.requests(), IsEmpty());
  EXPECT_THAT(queue(), SizeIs(1));
}

TEST_F(ProcessSMSByProgram, InvalidUtf8IsRepairedAndSent) {
  signIn();
  expectAnswered(processSMS("Paid \xff 150 \xe2\x82"), "SMS ignored - not a transaction");
  ASSERT_THAT(backend.requests(), SizeIs(1));
  EXPECT_EQ(platform::JSONDecoder::object(backend.requests()[0].body).decodeString("sms_text"),
            "Paid \ufffd 150 \ufffd");
}

TEST_F(ProcessSMSByProgram, ATextOfAMegabyteWithNULsArrivesWhole) {
  signIn();
  std::string text(1 << 20, 'x');
  text[1000] = '\0';
  expectAnswered(processSMS(text), "SMS ignored - not a transaction");
  ASSERT_THAT(backend.requests(), SizeIs(1));
  EXPECT_EQ(platform::JSONDecoder::object(backend.requests()[0].body).decodeString("sms_text"),
            text);
  backend.goAway();
  EXPECT_EQ(processSMS(text).status, 0);
  ASSERT_THAT(queue(), SizeIs(1));
  EXPECT_EQ(queue()[0].smsText, text);
}

}  // namespace
}  // namespace kivo
