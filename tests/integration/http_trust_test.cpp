// The certificates that the session trusts; a server without one gets nothing of a request.
#include <chrono>
#include <future>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/http/http_url_session.h"
#include "testkit/http_exchange.h"
#include "testkit/private_folders.h"
#include "testkit/scripted_lookup.h"
#include "testkit/scripted_server.h"
#include "testkit/test_authority.h"

namespace kivo::testkit {
namespace {

using namespace std::chrono_literals;

class ATLSExchange : public testing::Test {
 protected:
  ATLSExchange() { authority_.addTo(trusted_.path()); }

  /// The outcome of a request to a server with `identity`, by `host`.
  Outcome askServerWith(ServerIdentity identity, const std::string& host = "127.0.0.1") {
    const ScriptedServer server(answering(httpAnswer(200, "{}")),
                                {.identity = std::move(identity)});
    const Outcome outcome =
        exchange(session_, post("https://" + host + ":" + std::to_string(server.port()), "secret"));
    requests_ = server.requests();
    return outcome;
  }

  /// Expects that a server with `identity` is refused and has got no request.
  void refuses(ServerIdentity identity, const std::string& host = "127.0.0.1") {
    EXPECT_EQ(askServerWith(std::move(identity), host).failure, Failure::secureConnectionFailed);
    EXPECT_TRUE(requests_.empty());
  }

  TestAuthority authority_;
  TemporaryFolder trusted_;
  ScopedVariable folder_{"SSL_CERT_DIR", trusted_.path().string()};
  ScopedVariable file_{"SSL_CERT_FILE", "/dev/null"};
  linux_platform::HTTPURLSession session_;
  std::vector<std::string> requests_;
};

TEST_F(ATLSExchange, SucceedsWithACertificateOfAKnownAuthority) {
  const Outcome outcome = askServerWith(authority_.certify());
  EXPECT_EQ(outcome.status(), 200);
  EXPECT_EQ(outcome.body(), "{}");
  ASSERT_EQ(requests_.size(), 1U);
  EXPECT_TRUE(requests_[0].ends_with("secret"));
}

TEST_F(ATLSExchange, ChecksTheCertificateAgainstTheHostName) {
  scriptLookup("api.kivo.test", {"127.0.0.1"});
  EXPECT_EQ(
      askServerWith(authority_.certify({.names = "DNS:api.kivo.test"}), "api.kivo.test").status(),
      200);
  EXPECT_EQ(
      askServerWith(authority_.certify({.names = "DNS:*.kivo.test"}), "api.kivo.test").status(),
      200);
}

TEST_F(ATLSExchange, RefusesACertificateForAnotherName) {
  scriptLookup("api.kivo.test", {"127.0.0.1"});
  refuses(authority_.certify({.names = "DNS:other.test"}), "api.kivo.test");
  refuses(authority_.certify({.names = "DNS:kivo.test"}), "api.kivo.test");
  refuses(authority_.certify({.names = "DNS:a*.kivo.test"}), "api.kivo.test");
  refuses(authority_.certify({.names = "DNS:*.test"}), "api.kivo.test");
  refuses(authority_.certify({.names = "IP:127.0.0.1"}), "api.kivo.test");
}

TEST_F(ATLSExchange, IgnoresTheNameInTheCertificatesSubject) {
  scriptLookup(ServerClaim::subject, {"127.0.0.1"});
  refuses(authority_.certify({.names = "IP:127.0.0.1"}), ServerClaim::subject);
}

TEST_F(ATLSExchange, SendsTheHostNameInTheHandshake) {
  scriptLookup("api.kivo.test", {"127.0.0.1"});
  std::promise<std::string> wanted;
  const ScriptedServer server(
      [&wanted](ServerConnection& connection) { wanted.set_value(connection.requestedHostName()); },
      {.identity = authority_.certify({.names = "DNS:api.kivo.test,IP:127.0.0.1"})});
  exchange(session_, post("https://api.kivo.test:" + std::to_string(server.port())));
  EXPECT_EQ(wanted.get_future().get(), "api.kivo.test");
  wanted = {};
  exchange(session_, post(server.url()));
  EXPECT_EQ(wanted.get_future().get(), "");
}

TEST_F(ATLSExchange, RefusesACertificateForAnotherAddress) {
  refuses(authority_.certify({.names = "IP:127.0.0.2"}));
  refuses(authority_.certify({.names = "DNS:127.0.0.1"}));
  refuses(authority_.certify({.names = "DNS:localhost"}));
}

TEST_F(ATLSExchange, RefusesAnExpiredOrFutureCertificate) {
  refuses(authority_.certify({.validFrom = -2, .validUntil = -1}));
  refuses(authority_.certify({.validFrom = 1, .validUntil = 2}));
}

TEST_F(ATLSExchange, RefusesASelfSignedCertificate) { refuses(TestAuthority::selfSigned()); }

TEST_F(ATLSExchange, RefusesACertificateOfAnUnknownAuthority) {
  refuses(TestAuthority().certify());
}

TEST_F(ATLSExchange, RefusesEveryCertificateWithoutAKnownAuthority) {
  const TemporaryFolder empty;
  const ScopedVariable folder("SSL_CERT_DIR", empty.path().string());
  refuses(authority_.certify());
}

TEST_F(ATLSExchange, RefusesAnOldVersionOfTLS) {
  const ScriptedServer server(answering(httpAnswer(200, "{}")),
                              {.identity = authority_.certify(), .onlyOldTls = true});
  EXPECT_EQ(exchange(session_, post(server.url())).failure, Failure::secureConnectionFailed);
  EXPECT_TRUE(server.requests().empty());
}

TEST_F(ATLSExchange, RefusesAServerWithoutTLS) {
  std::string received;
  {
    const ScriptedServer server([&received](ServerConnection& connection) {
      connection.write(httpAnswer(200, "{}"));
      received = connection.readRequest();
    });
    EXPECT_EQ(
        exchange(session_, post("https://127.0.0.1:" + std::to_string(server.port()), "secret"))
            .failure,
        Failure::secureConnectionFailed);
  }
  EXPECT_EQ(received.find("secret"), std::string::npos);
  EXPECT_EQ(received.find("POST"), std::string::npos);
}

TEST_F(ATLSExchange, FailsWhenTheServerClosesDuringTheHandshake) {
  for (const bool hard : {false, true}) {
    const ScriptedServer server([hard](ServerConnection& connection) {
      connection.idle(50ms);
      if (hard) connection.reset();
    });
    EXPECT_EQ(
        exchange(session_, post("https://127.0.0.1:" + std::to_string(server.port()))).failure,
        Failure::secureConnectionFailed);
  }
}

TEST_F(ATLSExchange, AcceptsAWholeAnswerWithoutCloseNotify) {
  const ScriptedServer server(
      [](ServerConnection& connection) {
        connection.readRequest();
        connection.write(httpAnswer(200, "{}"));
        connection.closeWithoutNotify();
      },
      {.identity = authority_.certify()});
  EXPECT_EQ(exchange(session_, post(server.url())).body(), "{}");
}

TEST_F(ATLSExchange, ReadsABodyWithoutLengthUpToCloseNotify) {
  const ScriptedServer server(answering("HTTP/1.1 200 OK\r\n\r\n{\"a\":1}"),
                              {.identity = authority_.certify()});
  EXPECT_EQ(exchange(session_, post(server.url())).body(), R"({"a":1})");
}

TEST_F(ATLSExchange, FailsWhenABodyWithoutLengthLacksCloseNotify) {
  const ScriptedServer server(
      [](ServerConnection& connection) {
        connection.readRequest();
        connection.write("HTTP/1.1 200 OK\r\n\r\n{\"a\":1}");
        connection.closeWithoutNotify();
      },
      {.identity = authority_.certify()});
  EXPECT_EQ(exchange(session_, post(server.url())).failure, Failure::networkConnectionLost);
}

TEST_F(ATLSExchange, FailsWhenTheAnswerIsCutShort) {
  const std::string whole = httpAnswer(200, "{\"a\":1}");
  for (const std::size_t length : {std::size_t{0}, std::size_t{20}, whole.size() - 1}) {
    const ScriptedServer server(answering(whole.substr(0, length)),
                                {.identity = authority_.certify()});
    EXPECT_EQ(exchange(session_, post(server.url())).failure, Failure::networkConnectionLost);
  }
}

TEST_F(ATLSExchange, CanTimeOutAndBeCancelled) {
  const ScriptedServer server(
      [](ServerConnection& connection) {
        connection.readRequest();
        connection.idle();
      },
      {.identity = authority_.certify()});
  EXPECT_EQ(exchange(session_, post(server.url(), "{}", 300ms)).failure, Failure::timedOut);
  RunningExchange running(session_, post(server.url(), "{}", 60s));
  EXPECT_TRUE(server.waitForRequests(2));
  running.cancel();
  EXPECT_EQ(running.wait().failure, Failure::cancelled);
}

TEST_F(ATLSExchange, RunsInParallelWithManyOthers) {
  const ScriptedServer server(
      [](ServerConnection& connection) {
        const std::string request = connection.readRequest();
        connection.write(httpAnswer(200, request.substr(request.find("\r\n\r\n") + 4)));
      },
      {.identity = authority_.certify()});
  std::vector<RunningExchange> running;
  for (int each = 0; each < 20; ++each) {
    running.emplace_back(session_, post(server.url(), "body " + std::to_string(each)));
  }
  for (std::size_t each = 0; each < running.size(); ++each) {
    EXPECT_EQ(running[each].wait().body(), "body " + std::to_string(each));
  }
}

}  // namespace
}  // namespace kivo::testkit
