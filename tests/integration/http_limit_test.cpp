// Exchanges that time out or are cancelled, at each stage.
#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/http/http_url_session.h"
#include "testkit/http_exchange.h"
#include "testkit/loopback_socket.h"
#include "testkit/scripted_lookup.h"
#include "testkit/scripted_server.h"
#include "testkit/task_runner.h"

namespace kivo::testkit {
namespace {

using namespace std::chrono_literals;

constexpr auto limit = 400ms;
// A good exchange of these tests needs neither this nor `limit`.
constexpr auto soon = 3s;

const std::string halfAnAnswer = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{";
// More than the buffers of two sockets hold without a reader.
const std::string tooMuchToSend(16 << 20, 'x');

void silent(ServerConnection& connection) { connection.idle(); }

void silentAfterTheRequest(ServerConnection& connection) {
  connection.readRequest();
  connection.idle();
}

void silentWithinTheAnswer(ServerConnection& connection) {
  connection.readRequest();
  connection.write(halfAnAnswer);
  connection.idle();
}

class AStalledExchange : public testing::Test {
 protected:
  linux_platform::HTTPURLSession session_;

  void timesOut(platform::URLRequest request) {
    request.timeoutInterval = limit;
    const Outcome outcome = exchange(session_, std::move(request));
    EXPECT_EQ(outcome.failure, Failure::timedOut);
    EXPECT_GE(outcome.took, limit);
    EXPECT_LT(outcome.took, soon);
  }

  /// Expects that `running`, cancelled now, ends at once and as such.
  static void endsWhenCancelled(RunningExchange running) {
    running.cancel();
    const Outcome outcome = running.wait();
    EXPECT_EQ(outcome.failure, Failure::cancelled);
    EXPECT_LT(outcome.took, soon);
  }

  RunningExchange start(const std::string& url, std::string body = "{}") {
    return {session_, post(url, std::move(body), 60s)};
  }
};

TEST_F(AStalledExchange, TimesOutWhileConnecting) {
  const SilentPort port;
  timesOut(post("http://127.0.0.1:" + std::to_string(port.port())));
}

TEST_F(AStalledExchange, TimesOutDuringTheHandshake) {
  const ScriptedServer server(silent);
  timesOut(post("https://127.0.0.1:" + std::to_string(server.port())));
}

TEST_F(AStalledExchange, TimesOutWhileSending) {
  const ScriptedServer server(silent);
  timesOut(post(server.url(), tooMuchToSend));
}

TEST_F(AStalledExchange, TimesOutWithoutAnAnswer) {
  const ScriptedServer server(silentAfterTheRequest);
  timesOut(post(server.url()));
  EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(AStalledExchange, TimesOutWhenTheAnswerStops) {
  const ScriptedServer server(silentWithinTheAnswer);
  timesOut(post(server.url()));
}

TEST_F(AStalledExchange, TimesOutWhenTheAnswerTricklesIn) {
  const ScriptedServer server([](ServerConnection& connection) {
    connection.readRequest();
    connection.drip(httpAnswer(200, std::string(1000, 'x')), 50ms);
  });
  timesOut(post(server.url()));
}

TEST_F(AStalledExchange, TimesOutWhenInterimAnswersTrickleIn) {
  const ScriptedServer server([](ServerConnection& connection) {
    connection.readRequest();
    while (!connection.idle(100ms)) connection.write("HTTP/1.1 100 Continue\r\n\r\n");
  });
  timesOut(post(server.url()));
}

TEST_F(AStalledExchange, ClosesTheConnectionAtTheTimeout) {
  std::promise<bool> closed;
  const ScriptedServer server([&closed](ServerConnection& connection) {
    connection.readRequest();
    closed.set_value(connection.idle(5s));
  });
  timesOut(post(server.url()));
  EXPECT_TRUE(closed.get_future().get());
}

TEST_F(AStalledExchange, EndsWhenCancelledDuringTheLookup) {
  scriptHangingLookup("hanging.test");
  auto running = start("http://hanging.test/");
  std::this_thread::sleep_for(100ms);
  endsWhenCancelled(running);
}

TEST_F(AStalledExchange, EndsWhenCancelledWhileConnecting) {
  const SilentPort port;
  auto running = start("http://127.0.0.1:" + std::to_string(port.port()));
  std::this_thread::sleep_for(100ms);
  endsWhenCancelled(running);
}

TEST_F(AStalledExchange, TriesNoOtherAddressOnceCancelled) {
  const ScriptedServer second(silentAfterTheRequest, {.address = "127.0.0.3"});
  const SilentPort first("127.0.0.2", second.port());
  scriptLookup("half-silent.test", {"127.0.0.2", "127.0.0.3"});
  auto running = start("http://half-silent.test:" + std::to_string(second.port()));
  std::this_thread::sleep_for(100ms);
  endsWhenCancelled(running);
  std::this_thread::sleep_for(100ms);
  EXPECT_EQ(second.connections(), 0);
}

TEST_F(AStalledExchange, EndsWhenCancelledDuringTheHandshake) {
  const ScriptedServer server(silent);
  auto running = start("https://127.0.0.1:" + std::to_string(server.port()));
  EXPECT_TRUE(server.waitForConnections(1));
  std::this_thread::sleep_for(50ms);
  endsWhenCancelled(running);
}

TEST_F(AStalledExchange, EndsWhenCancelledWhileSending) {
  const ScriptedServer server(silent);
  auto running = start(server.url(), tooMuchToSend);
  EXPECT_TRUE(server.waitForConnections(1));
  std::this_thread::sleep_for(50ms);
  endsWhenCancelled(running);
}

TEST_F(AStalledExchange, EndsWhenCancelledBeforeTheAnswer) {
  const ScriptedServer server(silentAfterTheRequest);
  auto running = start(server.url());
  EXPECT_TRUE(server.waitForRequests(1));
  endsWhenCancelled(running);
}

TEST_F(AStalledExchange, EndsWhenCancelledDuringTheAnswer) {
  const ScriptedServer server(silentWithinTheAnswer);
  auto running = start(server.url());
  EXPECT_TRUE(server.waitForRequests(1));
  std::this_thread::sleep_for(50ms);
  endsWhenCancelled(running);
}

TEST_F(AStalledExchange, EndsWhenCancelledAtAnyMoment) {
  const ScriptedServer server(silentWithinTheAnswer);
  for (auto pause = 0us; pause < 2ms; pause += 40us) {
    auto running = start(server.url());
    std::this_thread::sleep_for(pause);
    endsWhenCancelled(running);
  }
}

platform::Task<void> askTwice(platform::URLSession* session, std::string url,
                              std::vector<Failure>* failures) {
  for (int attempt = 0; attempt < 2; ++attempt) {
    auto request = post(url, "{}", 60s);
    try {
      co_await session->data(std::move(request));
    } catch (const platform::URLError& error) {
      failures->push_back(error.code());
    }
  }
}

TEST_F(AStalledExchange, IsNotStartedByACancelledTask) {
  const ScriptedServer server(silentAfterTheRequest);
  std::vector<Failure> failures;
  auto running = executor().start(askTwice(&session_, server.url(), &failures));
  EXPECT_TRUE(server.waitForRequests(1));
  running.cancel();
  running.wait();
  EXPECT_EQ(failures, (std::vector{Failure::cancelled, Failure::cancelled}));
  EXPECT_EQ(server.connections(), 1);
}

}  // namespace
}  // namespace kivo::testkit
