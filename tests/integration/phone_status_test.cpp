// The checks of a backend by sign-in, status and queue send of kivo-phone.
#include <atomic>

#include <gmock/gmock.h>

#include "platform/foundation/date.h"
#include "platform/linux/process/child_process.h"
#include "queue/pending_sms_queue.h"
#include "store/shared_store.h"
#include "testkit/backend_answers.h"
#include "testkit/private_phone.h"
#include "testkit/queued_items.h"
#include "testkit/scripted_server.h"
#include "testkit/test_authority.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;
using testkit::answering;
using testkit::httpAnswer;
using testkit::queuedItem;
using testkit::ScriptedServer;

constexpr const char* nowhere = "http://127.0.0.1:1";  // a port that takes no connection

class ASignedInPhone : public testing::Test {
 protected:
  ASignedInPhone() { authority_.addTo(trusted_.path()); }

  static ProgramResult run(std::vector<std::string> arguments) {
    return linux_platform::runProgram({.program = linux_platform::programFolder() / "kivo-phone",
                                       .arguments = std::move(arguments)});
  }
  static ProgramResult signIn(const std::string& url, const std::string& currency = "EGP") {
    return run({"sign-in", "--user-id", "person-17", "--url", url, "--currency", currency});
  }
  static ProgramResult processSMS(const std::string& text) {
    return linux_platform::runProgram(
        {.program = linux_platform::programFolder() / "kivo-intents",
         .arguments = {"perform", "ProcessSMSIntent", "--smsText", "-"},
         .input = text});
  }
  static void queue(const std::vector<PendingSmsItem>& items) {
    SharedStore store = SharedStore::open(appGroup).value();
    PendingSmsQueue::save(items, store);
  }
  static std::vector<PendingSmsItem> queued() {
    return PendingSmsQueue::load(SharedStore::open(appGroup).value());
  }
  /// Expects these lines of sign-in for a server with `identity`.
  static void expectFound(testkit::ServerIdentity identity, const std::string& words) {
    const ScriptedServer server(answering(httpAnswer(405, "{}")),
                                {.identity = std::move(identity)});
    const ProgramResult result = signIn(server.url());
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr(words));
  }

  testkit::PrivatePhone phone_;
  testkit::TestAuthority authority_;
  testkit::TemporaryFolder trusted_;
  testkit::ScopedVariable folder_{"SSL_CERT_DIR", trusted_.path().string()};
  testkit::ScopedVariable file_{"SSL_CERT_FILE", "/dev/null"};
};

TEST_F(ASignedInPhone, ReportsThatTheBackendAnswers) {
  const ScriptedServer server(answering(httpAnswer(405, "{}")));
  EXPECT_EQ(signIn(server.url()).output,
            "Signed in at " + server.url() + "\nThe backend answers.\n");
  const auto requests = server.requests();
  ASSERT_THAT(requests, SizeIs(1));
  EXPECT_THAT(requests[0], StartsWith("GET /functions/v1/sms-extraction HTTP/1.1\r\n"));
  EXPECT_THAT(requests[0], Not(HasSubstr("person-17")));
}

TEST_F(ASignedInPhone, ExplainsAnUnexpectedStatus) {
  for (const auto& [status, words] :
       std::vector<std::pair<int, std::string>>{{404, "check the base URL"},
                                                {301, "redirects are not followed"},
                                                {503, "out of order"}}) {
    const ScriptedServer server(answering(httpAnswer(status, "{}")));
    EXPECT_THAT(signIn(server.url()).output, HasSubstr(words));
  }
}

TEST_F(ASignedInPhone, StoresTheSignInWhenTheBackendIsUnreachable) {
  const ProgramResult result = signIn(nowhere);
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output,
              HasSubstr("cannot be reached now: The host did not take the connection"));
  EXPECT_EQ(run({"store", "get", "supabaseUrl"}).output, std::string(nowhere) + "\n");
}

TEST_F(ASignedInPhone, ReportsThatTheHostNameIsNotFound) {
  EXPECT_THAT(signIn("https://backend.invalid").output, HasSubstr("The host name was not found"));
}

TEST_F(ASignedInPhone, ReportsWhetherTheCertificateIsTrustedAndWhyNot) {
  expectFound(authority_.certify(), "Its certificate is trusted.\n");
  expectFound(authority_.certify({.validFrom = -3, .validUntil = -1}), "certificate has expired");
  expectFound(authority_.certify({.names = "DNS:other.test"}), "IP address mismatch");
  expectFound(testkit::TestAuthority::selfSigned(), "self-signed certificate");
}

TEST_F(ASignedInPhone, WarnsOfClearTextExceptOnLoopback) {
  for (const char* const url : {"http://backend.invalid", "http://127.0.0.1.nip.invalid"}) {
    EXPECT_THAT(signIn(url).output, HasSubstr("in clear text to another machine"));
  }
  for (const char* const url : {"http://127.0.0.1:1", "http://localhost:1", "http://[::1]:1"}) {
    EXPECT_THAT(signIn(url).output, Not(HasSubstr("clear text")));
  }
}

TEST_F(ASignedInPhone, WarnsOfAnUnknownCurrency) {
  for (const char* const code : {"EURO", "XYZ", "", "E"}) {
    EXPECT_THAT(signIn(nowhere, code).output, HasSubstr("is no currency code of ISO 4217"));
  }
  for (const char* const code : {"EGP", "usd", "KWD"}) {
    EXPECT_THAT(signIn(nowhere, code).output, Not(HasSubstr("ISO 4217")));
  }
}

TEST_F(ASignedInPhone, ShowsBackendAndPermissionInItsStatus) {
  const ScriptedServer server(answering(httpAnswer(405, "{}")));
  signIn(server.url());
  run({"notifications", "authorized"});
  EXPECT_EQ(run({"status"}).output, "Signed in      at " + server.url() +
                                        "\n"
                                        "Backend        The backend answers.\n"
                                        "Currency       EGP\n"
                                        "Notifications  authorized\n"
                                        "Senders        none for kivo-sms-watcher; "
                                        "kivo-phone watch add names one\n"
                                        "Waiting        none\n");
}

TEST_F(ASignedInPhone, ShowsInItsStatusThatItIsSignedOut) {
  EXPECT_THAT(run({"status"}).output,
              StartsWith("Signed in      no; kivo-phone sign-in does it\n"));
  signIn(nowhere);
  run({"sign-out"});
  EXPECT_THAT(run({"status"}).output, StartsWith("Signed in      no"));
}

TEST_F(ASignedInPhone, ShowsInItsStatusWhyTheLastTextFailed) {
  signIn(nowhere);
  processSMS("Paid 1");
  EXPECT_THAT(run({"status"}).output,
              HasSubstr("Waiting        1 text; the last attempt failed just now: "
                        "The host did not take the connection\n"));
  {
    const ScriptedServer server(answering(httpAnswer(401, "{}")));
    signIn(server.url());
    processSMS("Paid 2");
  }
  EXPECT_THAT(run({"status"}).output, HasSubstr("2 texts; the last attempt failed just now: "
                                                "the backend answered with HTTP status 401\n"));
  const ScriptedServer server(answering(httpAnswer(200, "{\"unexpected\":1}")));
  signIn(server.url());
  processSMS("Paid 3");
  EXPECT_THAT(run({"status"}).output,
              HasSubstr("3 texts; the last attempt failed just now: the backend answered with HTTP "
                        "status 200, but its response cannot be read\n"));
}

TEST_F(ASignedInPhone, ShowsTheNotificationPermission) {
  EXPECT_EQ(run({"notifications"}).output, "Notifications: not-determined\n");
  run({"notifications", "denied"});
  EXPECT_EQ(run({"notifications"}).output, "Notifications: denied\n");
}

TEST_F(ASignedInPhone, SendsAllQueuedTexts) {
  const ScriptedServer server(answering(httpAnswer(200, testkit::savedBody())));
  signIn(server.url());
  queue({queuedItem("A"), queuedItem("B"), queuedItem("C"), queuedItem("D")});
  const ProgramResult result = run({"queue", "send"});
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.output, "Sent 4 texts.\n");
  EXPECT_THAT(queued(), IsEmpty());
  EXPECT_EQ(SharedStore::open(appGroup)->readFloat(StoreKeys::smsQueueDrainLock), 0);
  EXPECT_EQ(run({"queue", "send"}).output, "Nothing waits to be sent.\n");
}

TEST_F(ASignedInPhone, CountsNoRetryWhileTheBackendIsUnreachable) {
  signIn(nowhere);
  queue({queuedItem("A", 3)});
  const ProgramResult result = run({"queue", "send"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors,
              StartsWith("kivo-phone: nothing was sent: The backend cannot be reached"));
  EXPECT_EQ(queued(), std::vector{queuedItem("A", 3)});
}

TEST_F(ASignedInPhone, KeepsRefusedTextsAndReportsTheReason) {
  const ScriptedServer server(answering(httpAnswer(400, "{}")));
  signIn(server.url());
  queue({queuedItem("A"), queuedItem("B", 10), queuedItem("C", 4)});
  const ProgramResult result = run({"queue", "send"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "Sent 0 texts.\nDropped 1 text that had failed ten times.\n");
  EXPECT_EQ(
      result.errors,
      "kivo-phone: 2 texts failed and still wait: the backend answered with HTTP status 400\n");
  EXPECT_EQ(queued(), (std::vector{queuedItem("A", 1), queuedItem("C", 5)}));
}

TEST_F(ASignedInPhone, StopsSendingAfterATextWithoutAnAnswer) {
  std::atomic<int> connections = 0;
  const ScriptedServer server([&connections](testkit::ServerConnection& connection) {
    connection.readRequest();
    if (connections++ == 0) connection.write(httpAnswer(405, "{}"));  // the check
  });
  signIn(nowhere);
  run({"store", "set", "supabaseUrl", server.url()});
  queue({queuedItem("A"), queuedItem("B")});
  const ProgramResult result = run({"queue", "send"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, HasSubstr("1 text failed and still waits: The connection ended"));
  EXPECT_EQ(queued(), (std::vector{queuedItem("B"), queuedItem("A", 1)}));
}

TEST_F(ASignedInPhone, SendsNothingDuringAnotherDrain) {
  const ScriptedServer server(answering(httpAnswer(200, testkit::savedBody())));
  signIn(server.url());
  queue({queuedItem("A")});
  SharedStore store = SharedStore::open(appGroup).value();
  store.writeFloat(StoreKeys::smsQueueDrainLock, platform::secondsSince1970(platform::Date::now()));
  store.synchronize();
  const ProgramResult result = run({"queue", "send"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors,
            "kivo-phone: texts are being sent just now; try again in half a minute\n");
  EXPECT_THAT(queued(), SizeIs(1));
}

TEST_F(ASignedInPhone, SendsNothingWhenSignedOut) {
  queue({queuedItem("A")});
  EXPECT_EQ(run({"queue", "send"}).errors,
            "kivo-phone: not signed in; run kivo-phone sign-in first\n");
}

}  // namespace
}  // namespace kivo
