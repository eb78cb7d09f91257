// The host lookup of the session.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/http/http_url_session.h"
#include "testkit/http_exchange.h"
#include "testkit/loopback_socket.h"
#include "testkit/scripted_lookup.h"
#include "testkit/scripted_server.h"

namespace kivo::testkit {
namespace {

using namespace std::chrono_literals;

class AHostLookup : public testing::Test {
 protected:
  linux_platform::HTTPURLSession session_;

  static std::string url(const std::string& host, std::uint16_t port) {
    return "http://" + host + ":" + std::to_string(port);
  }
};

TEST_F(AHostLookup, FindsLocalhost) {
  const ScriptedServer server(answering(httpAnswer(200, "{}")));
  // It may also resolve to ::1, where no server listens.
  EXPECT_EQ(exchange(session_, post(url("localhost", server.port()))).status(), 200);
  EXPECT_NE(server.requests().at(0).find("\r\nHost: localhost:"), std::string::npos);
}

TEST_F(AHostLookup, FailsForAnUnknownName) {
  scriptLookup("unknown.test", {});
  EXPECT_EQ(exchange(session_, post("http://unknown.test/")).failure, Failure::cannotFindHost);
}

TEST_F(AHostLookup, FailsInTheSystemResolverForAReservedName) {
  // Without a network the system may take a while to report it.
  const Outcome outcome = exchange(session_, post("http://nonexistent.invalid/", "{}", 2s));
  EXPECT_TRUE(outcome.failure == Failure::cannotFindHost || outcome.failure == Failure::timedOut);
  EXPECT_LT(outcome.took, 5s);
}

TEST_F(AHostLookup, FailsForAnInvalidName) {
  for (const char* const url : {"http://h%61st/", "http://a_b..c/"}) {
    const Outcome outcome = exchange(session_, post(url, "{}", 2s));
    EXPECT_TRUE(outcome.failure == Failure::cannotFindHost || outcome.failure == Failure::timedOut);
  }
}

TEST_F(AHostLookup, ResolvesANameThatBeginsLikeAnAddress) {
  const ScriptedServer named(answering(httpAnswer(200, "named")), {.address = "127.0.0.3"});
  const RefusedPort address("127.0.0.1", named.port());
  scriptLookup("127.0.0.1.nip.test", {"127.0.0.3"});
  EXPECT_EQ(exchange(session_, post(url("127.0.0.1.nip.test", named.port()))).body(), "named");
}

TEST_F(AHostLookup, HasAllItsAddressesTriedInOrder) {
  const ScriptedServer last(answering(httpAnswer(200, "last")), {.address = "127.0.0.3"});
  const RefusedPort first("127.0.0.1", last.port());
  const RefusedPort second("::1", last.port());
  scriptLookup("three.test", {"127.0.0.1", "::1", "127.0.0.3"});
  EXPECT_EQ(exchange(session_, post(url("three.test", last.port()))).body(), "last");
}

TEST_F(AHostLookup, HasItsFirstWorkingAddressUsed) {
  const ScriptedServer first(answering(httpAnswer(200, "first")), {.address = "127.0.0.2"});
  const ScriptedServer second(answering(httpAnswer(200, "second")),
                              {.address = "127.0.0.3", .port = first.port()});
  scriptLookup("two.test", {"127.0.0.2", "127.0.0.3"});
  EXPECT_EQ(exchange(session_, post(url("two.test", first.port()))).body(), "first");
  EXPECT_EQ(second.connections(), 0);
}

TEST_F(AHostLookup, LeavesTimeForTheNextAddressAfterASilentOne) {
  const ScriptedServer second(answering(httpAnswer(200, "{}")), {.address = "127.0.0.3"});
  const SilentPort first("127.0.0.2", second.port());
  scriptLookup("half-silent.test", {"127.0.0.2", "127.0.0.3"});
  const Outcome outcome =
      exchange(session_, post(url("half-silent.test", second.port()), "{}", 1s));
  EXPECT_EQ(outcome.status(), 200);
  EXPECT_GE(outcome.took, 400ms);
}

TEST_F(AHostLookup, CannotConnectWhenEachAddressRefuses) {
  const RefusedPort first("127.0.0.2");
  const RefusedPort second("127.0.0.3", first.port());
  scriptLookup("refused.test", {"127.0.0.2", "127.0.0.3"});
  EXPECT_EQ(exchange(session_, post(url("refused.test", first.port()))).failure,
            Failure::cannotConnectToHost);
}

TEST_F(AHostLookup, CountsTowardsTheTimeoutOfTheExchange) {
  scriptHangingLookup("hanging.test");
  const Outcome outcome = exchange(session_, post("http://hanging.test/", "{}", 300ms));
  EXPECT_EQ(outcome.failure, Failure::timedOut);
  EXPECT_GE(outcome.took, 300ms);
  EXPECT_LT(outcome.took, 2s);
}

TEST_F(AHostLookup, DoesNotDelayOtherExchanges) {
  scriptHangingLookup("hanging.test");
  const ScriptedServer server(answering(httpAnswer(200, "{}")));
  std::vector<RunningExchange> hanging;
  for (int each = 0; each < 8; ++each) {
    hanging.emplace_back(session_, post("http://hanging.test/", "{}", 1s));
  }
  EXPECT_LT(exchange(session_, post(server.url())).took, 500ms);
  for (auto& each : hanging) EXPECT_EQ(each.wait().failure, Failure::timedOut);
}

platform::Task<void> ask(platform::URLSession* session, std::string url) {
  auto request = post(url, "{}", 200ms);
  try {
    co_await session->data(std::move(request));
  } catch (const platform::URLError& error) {
    std::fprintf(stderr, "%s\n", error.what());
  }
}

TEST_F(AHostLookup, DoesNotDelayTheEndOfTheProcess) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EXIT(
      {
        scriptHangingLookup("hanging.test");
        {
          linux_platform::TaskExecutor workers(1);
          linux_platform::HTTPURLSession session;
          workers.start(ask(&session, "http://hanging.test/")).wait();
        }
        std::exit(7);
      },
      testing::ExitedWithCode(7), "timedOut");
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);
}

}  // namespace
}  // namespace kivo::testkit
