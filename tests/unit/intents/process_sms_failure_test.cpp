// ProcessSMSIntent when the backend cannot be reached, or answers with an error.
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/foundation/errors.h"
#include "queue/pending_sms_queue.h"
#include "testkit/backend_answers.h"
#include "testkit/queued_items.h"
#include "testkit/test_phone.h"
#include "testkit/written_output.h"
#include "unit/intents/started_run.h"

namespace kivo {
namespace {

using platform::DecodingError;
using platform::NSError;
using platform::URLError;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testkit::TestPhone;

const std::string savedOffline = "Saved offline - will process when connected";

class ABankSMSThatFails : public ::testing::Test {
 protected:
  struct Output {
    std::string dialog;
    testkit::WrittenOutput written;
  };
  static Output performCaptured(const std::string& text = "Paid 150 at Carrefour") {
    Output output;
    output.written = testkit::writtenBy([&] { output.dialog = StartedRun(text).dialog(); });
    return output;
  }
  std::string perform(const std::string& text = "Paid 150 at Carrefour") {
    phone_.session.willFail(URLError(URLError::Code::timedOut));
    return performCaptured(text).dialog;
  }
  static std::vector<PendingSmsItem> queued() {
    return PendingSmsQueue::load(TestPhone::openStore());
  }

  TestPhone phone_;
};

TEST_F(ABankSMSThatFails, IsQueuedUnderTheKeyAndDateOfItsRequest) {
  EXPECT_EQ(perform(" \tPaid 150\u3000\n "), savedOffline);
  const PendingSmsItem expected{.id = phone_.session.sent("idempotency_key").at(0),
                                .smsText = " \tPaid 150\u3000\n ",
                                .expenseDate = "2026-01-31",
                                .queuedAt = "2026-01-31T09:05:07Z",
                                .retryCount = 0,
                                .source = "sms"};
  EXPECT_THAT(queued(), ElementsAre(expected));
  EXPECT_EQ(phone_.text(StoreKeys::pendingSmsQueueCount), "1");
}

TEST_F(ABankSMSThatFails, IsQueuedWithoutAmountAndMerchant) {
  perform();
  const auto text = phone_.text(StoreKeys::pendingSmsQueue).value();
  EXPECT_THAT(text, Not(HasSubstr("amount")));
  EXPECT_THAT(text, Not(HasSubstr("merchant")));
}

TEST_F(ABankSMSThatFails, HasTheDateOfItsRequestAndTheTimeItWasQueued) {
  phone_.clock.set(testkit::utc(2026, 1, 31, 23, 59, 50));
  phone_.session.willDo([this](const platform::URLRequest&) -> platform::URLAnswer {
    phone_.clock.advance(std::chrono::seconds(15));
    throw URLError(URLError::Code::timedOut);
  });
  performCaptured();
  ASSERT_EQ(queued().size(), 1u);
  EXPECT_EQ(queued()[0].expenseDate, "2026-01-31");
  EXPECT_EQ(queued()[0].queuedAt, "2026-02-01T00:00:05Z");
}

TEST_F(ABankSMSThatFails, PostsThatItIsSavedOffline) {
  perform();
  EXPECT_THAT(phone_.notifications.told(),
              ElementsAre("📡 Expense Saved Offline | Will be processed when you're back online"));
}

TEST_F(ABankSMSThatFails, IsQueuedBeforeTheNotification) {
  perform();
  EXPECT_THAT(phone_.log.names(), ElementsAre("exchange", "settings", "notification"));
  EXPECT_EQ(testkit::textIn(phone_.log.first("settings").store, StoreKeys::pendingSmsQueueCount),
            "1");
}

TEST_F(ABankSMSThatFails, GetsItsAnswerAfterTheNotification) {
  phone_.session.willAnswer("", 500);
  phone_.notifications.addGate().close();
  StartedRun run("Paid 150");
  phone_.notifications.addGate().waitForArrivals(1);
  EXPECT_FALSE(run.hasEnded());
  phone_.notifications.addGate().open();
  EXPECT_EQ(run.dialog(), savedOffline);
}

TEST_F(ABankSMSThatFails, DoesNotReloadCountOrDrain) {
  SharedStore store = phone_.openStore();
  PendingSmsQueue::save({testkit::queuedItem("waiting")}, store);
  perform();
  EXPECT_EQ(phone_.widget.reloads(), 0);
  EXPECT_EQ(phone_.text(StoreKeys::todayTotal), std::nullopt);
  EXPECT_EQ(phone_.session.requests().size(), 1u);
  EXPECT_EQ(phone_.number(StoreKeys::smsQueueDrainLock), std::nullopt);
  EXPECT_EQ(queued().front(), testkit::queuedItem("waiting"));
}

TEST_F(ABankSMSThatFails, IsRetriedUnderTheSameKeyAfterTheNextSuccess) {
  perform();
  phone_.session.willAnswer(testkit::savedBody());
  phone_.session.willAnswer(testkit::savedBody({.amount = 7}));
  phone_.clock.advance(std::chrono::hours(24));
  EXPECT_EQ(StartedRun("Another").dialog(), "Tracked EGP\u00a0150.00 at Carrefour");
  const auto keys = phone_.session.sent("idempotency_key");
  ASSERT_EQ(keys.size(), 3u);
  EXPECT_EQ(keys[2], keys[0]);
  EXPECT_EQ(phone_.session.sent("expense_date")[2], "2026-01-31");
  EXPECT_THAT(queued(), IsEmpty());
  EXPECT_EQ(phone_.text(StoreKeys::todayTotal), "150.0") << "a drained expense is not counted";
}

TEST_F(ABankSMSThatFails, IsQueuedOnceWhenItFailsTwiceWithinAMinute) {
  perform();
  phone_.clock.advance(std::chrono::seconds(59));
  EXPECT_EQ(perform(), savedOffline);
  EXPECT_EQ(queued().size(), 1u);
  phone_.clock.advance(std::chrono::seconds(1));
  perform();
  EXPECT_EQ(queued().size(), 2u);
}

TEST_F(ABankSMSThatFails, IsQueuedAndAnsweredWithoutNotifications) {
  phone_.notifications.setStatus(platform::UNAuthorizationStatus::denied);
  EXPECT_EQ(perform(), savedOffline);
  EXPECT_EQ(queued().size(), 1u);
}

TEST_F(ABankSMSThatFails, IsQueuedWhenTheAnswerCannotBeDecoded) {
  phone_.session.willAnswer("<html>");
  EXPECT_EQ(performCaptured().written.out, "ProcessSMSIntent error: DecodingError dataCorrupted\n");
  EXPECT_EQ(queued().size(), 1u);
}

// The error line for every kind of failure, with all secrets marked.

struct Failure {
  std::string name;
  std::function<void(testkit::RecordingURLSession&)> arrange;
  std::string line;
};

void PrintTo(const Failure& failure, std::ostream* out) { *out << failure.name; }

Failure transport(std::string name, URLError::Code code) {
  return {name, [code](auto& session) { session.willFail(URLError(code)); },
          std::string("ProcessSMSIntent error: ") + URLError(code).what() + "\n"};
}

Failure status(int number) {
  return {
      "status" + std::to_string(number),
      [number](auto& session) { session.willAnswer(testkit::savedBody(), number); },
      "ProcessSMSIntent error: Error Domain=SMSExtraction Code=500 \"Failed to extract SMS\"\n"};
}

Failure answered(std::string name, std::string body, DecodingError error) {
  return {std::move(name), [body](auto& session) { session.willAnswer(body); },
          std::string("ProcessSMSIntent error: ") + error.what() + "\n"};
}

std::vector<Failure> failures() {
  using Code = URLError::Code;
  using Kind = DecodingError::Kind;
  return {
      transport("cancelled", Code::cancelled),
      transport("timedOut", Code::timedOut),
      transport("unsupportedURL", Code::unsupportedURL),
      transport("cannotFindHost", Code::cannotFindHost),
      transport("cannotConnectToHost", Code::cannotConnectToHost),
      transport("secureConnectionFailed", Code::secureConnectionFailed),
      transport("networkConnectionLost", Code::networkConnectionLost),
      transport("badServerResponse", Code::badServerResponse),
      transport("dataLengthExceedsMaximum", Code::dataLengthExceedsMaximum),
      status(201),
      status(404),
      status(503),
      answered("keyNotFound", R"({"MARK":"MARK 150.25 MARK"})",
               DecodingError(Kind::keyNotFound, "saved")),
      answered("valueNotFound",
               R"({"saved":true,"expense":{"id":"MARK","description":"MARK","amount":null}})",
               DecodingError(Kind::valueNotFound, "expense.amount")),
      answered("typeMismatch",
               R"({"saved":true,"expense":{"id":"MARK","description":"MARK","amount":"150.25"}})",
               DecodingError(Kind::typeMismatch, "expense.amount", "number", "string")),
      answered("dataCorrupted", R"({"saved":true,"reason":"MARK 150.25)",
               DecodingError(Kind::dataCorrupted, "")),
  };
}

class AFailure : public ABankSMSThatFails, public ::testing::WithParamInterface<Failure> {};

TEST_P(AFailure, IsPrintedInOneLineWithoutSecrets) {
  phone_.put(StoreKeys::userId, "MARK-user");
  GetParam().arrange(phone_.session);
  const auto output = performCaptured("Paid 150.25 at MARK");
  EXPECT_EQ(output.dialog, savedOffline);
  EXPECT_EQ(output.written.out, GetParam().line);
  EXPECT_EQ(output.written.err, "");
  EXPECT_THAT(output.written.out, Not(HasSubstr("MARK")));
  EXPECT_THAT(output.written.out, Not(HasSubstr("150.25")));
  EXPECT_EQ(queued().size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(, AFailure, ::testing::ValuesIn(failures()),
                         [](const auto& failure) { return failure.param.name; });

}  // namespace
}  // namespace kivo
