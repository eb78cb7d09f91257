// The checks of ProcessSMSIntent before it sends anything, and its request.
#include <filesystem>
#include <fstream>

#include "unit/intents/a_bank_sms.h"

namespace kivo {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testkit::notSavedBody;
using testkit::TestPhone;

TEST_F(ABankSMS, IsRefusedWhenItIsOnlyBlanks) {
  for (const auto* const blanks :
       {"", " ", "\t", " \t ", "\u00a0", "\u3000", "\u2009\u202f", "\u1680\u205f"}) {
    EXPECT_EQ(perform(blanks), "No SMS text provided");
  }
  expectNothingDone();
}

TEST_F(ABankSMS, IsSentWhenItIsOnlyLineBreaks) {
  for (const auto* const text : {"\n", "\r\n", " \n\t", "\u2028", "\v", "\u200b"}) {
    EXPECT_EQ((phone_.session.willAnswer(notSavedBody), perform(text)),
              "SMS ignored - not a transaction");
  }
  EXPECT_THAT(phone_.session.sent("sms_text"),
              ElementsAre("\n", "\r\n", " \n\t", "\u2028", "\v", "\u200b"));
}

TEST_F(ABankSMS, IsSentWithItsSurroundingBlanks) {
  phone_.session.willAnswer(notSavedBody);
  perform(" \t\u00a0Paid 150\u3000\n ");
  EXPECT_THAT(phone_.session.sent("sms_text"), ElementsAre(" \t\u00a0Paid 150\u3000\n "));
}

TEST_F(ABankSMS, IsSentOnceWithKeyDateAndCredentials) {
  performAnswered(notSavedBody);
  EXPECT_EQ(phone_.session.onlyRequest().url.host, "backend.example");
  EXPECT_THAT(phone_.session.sent("user_id"), ElementsAre("user-0815"));
  EXPECT_THAT(phone_.session.sent("expense_date"), ElementsAre("2026-01-31"));
  EXPECT_THAT(phone_.session.sent("idempotency_key"),
              ElementsAre(::testing::MatchesRegex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}")));
}

TEST_F(ABankSMS, HasANewKeyInEachRun) {
  performAnswered(notSavedBody);
  performAnswered(notSavedBody);
  const auto keys = phone_.session.sent("idempotency_key");
  EXPECT_NE(keys[0], keys[1]);
}

TEST_F(ABankSMS, IsNotSentWhenSignedOut) {
  const std::string askToSignIn = "Please open Kivo app and sign in first";
  phone_.put(StoreKeys::userId, "");
  EXPECT_EQ(perform(), askToSignIn);
  phone_.put(StoreKeys::userId, "user-0815");
  phone_.put(StoreKeys::supabaseUrl, "");
  EXPECT_EQ(perform(), askToSignIn);
  phone_.put(StoreKeys::userId, "");
  EXPECT_EQ(perform(), askToSignIn);
  phone_.put(StoreKeys::supabaseUrl, "https://backend.example");
  phone_.put(StoreKeys::userId, 815.0);
  EXPECT_EQ(perform(), askToSignIn) << "a number is no text";
  EXPECT_THAT(phone_.log.names(), IsEmpty());
}

TEST(APhoneWithoutSignIn, SendsNoMessage) {
  TestPhone phone;
  std::filesystem::remove_all(phone.folders.dataHome());
  EXPECT_EQ(StartedRun("Paid 150").dialog(), "Please open Kivo app and sign in first");
  phone.put(StoreKeys::userId, "user-0815");
  EXPECT_EQ(StartedRun("Paid 150").dialog(), "Please open Kivo app and sign in first");
  EXPECT_THAT(phone.log.names(), IsEmpty());
}

TEST_F(ABankSMS, IsSentWithAUserIdOfBlanks) {
  phone_.put(StoreKeys::userId, " ");
  performAnswered(notSavedBody);
  EXPECT_THAT(phone_.session.sent("user_id"), ElementsAre(" "));
}

TEST_F(ABankSMS, IsNotSentWhenTheStoreCannotBeOpened) {
  std::filesystem::remove_all(phone_.folders.dataHome());
  std::ofstream(phone_.folders.dataHome()) << "a file where the folder should be";
  EXPECT_EQ(perform(), "Failed to access app storage");
  EXPECT_THAT(phone_.log.names(), IsEmpty());
  EXPECT_EQ(perform(" "), "No SMS text provided") << "the text is looked at first";
}

TEST_F(ABankSMS, UsesANewSignInInTheNextRun) {
  performAnswered(notSavedBody);
  phone_.put(StoreKeys::userId, "somebody-else");
  phone_.put(StoreKeys::supabaseUrl, "http://elsewhere.example");
  performAnswered(notSavedBody);
  EXPECT_THAT(phone_.session.sent("user_id"), ElementsAre("user-0815", "somebody-else"));
  EXPECT_EQ(phone_.session.requests()[1].url.host, "elsewhere.example");
}

}  // namespace
}  // namespace kivo
