// The whole program against a backend that misbehaves on the wire.
#include "misbehaving_server.h"

#include <algorithm>
#include <future>
#include <memory>
#include <thread>

#include "platform/foundation/json_decoder.h"
#include "store_agreement.h"
#include "testkit/extension_program.h"
#include "testkit/loopback_socket.h"

namespace kivo::testkit {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using linux_platform::ProgramResult;

// The timeout of an exchange, and the time that a run may take beyond it.
constexpr auto limit = 15s;
constexpr auto rest = 1s;

constexpr const char* smsText = "Paid 150 at Carrefour";

// A phone that can exist many times at once: the store of a signed-in user and a run on it.
class Phone {
 public:
  explicit Phone(const std::string& url) {
    const ScopedVariable here("XDG_DATA_HOME", data_.path().string());
    SharedStore store = SharedStore::open(appGroup).value();
    store.writeText(StoreKeys::userId, "user-1");
    store.writeText(StoreKeys::supabaseUrl, url);
    store.synchronize();
  }

  void start(const std::string& trusted) {
    linux_platform::ProgramCall call{.program = linux_platform::programFolder() / "kivo-intents",
                                     .arguments = {"perform", "ProcessSMSIntent", "--smsText", "-"},
                                     .input = smsText,
                                     .environment = {{"XDG_DATA_HOME", data_.path().string()},
                                                     {"SSL_CERT_DIR", trusted},
                                                     {"SSL_CERT_FILE", "/dev/null"}}};
    run_ = std::async(std::launch::async, [this, call = std::move(call)]() mutable {
      const auto begin = Clock::now();
      result_ = linux_platform::runProgram(std::move(call));
      took_ = Clock::now() - begin;
    });
  }
  void wait() { run_.get(); }

  [[nodiscard]] const ProgramResult& result() const { return result_; }
  [[nodiscard]] Clock::duration took() const { return took_; }
  [[nodiscard]] std::vector<PendingSmsItem> queue() const {
    const ScopedVariable here("XDG_DATA_HOME", data_.path().string());
    return PendingSmsQueue::load(SharedStore::open(appGroup).value());
  }
  [[nodiscard]] std::string disagreement() const {
    return storeDisagreement(data_.path() / appGroup / "defaults.sqlite3");
  }

 private:
  TemporaryFolder data_;
  ProgramResult result_;
  Clock::duration took_{};
  std::future<void> run_;
};

class AMisbehavingServer : public testing::Test {
 protected:
  AMisbehavingServer() { authority_.addTo(trusted_.path()); }

  /// Runs the program against each of `all`, `atOnce` at a time, and checks the outcomes.
  void meetEach(const std::vector<Misbehaviour>& all, std::size_t atOnce,
                Clock::duration longest = limit + rest) {
    for (std::size_t from = 0; from < all.size(); from += atOnce) {
      const std::size_t to = std::min(all.size(), from + atOnce);
      meetAtOnce({all.begin() + static_cast<std::ptrdiff_t>(from),
                  all.begin() + static_cast<std::ptrdiff_t>(to)},
                 longest);
    }
  }

 private:
  struct Meeting {
    const Misbehaviour& with;
    ScriptedServer server;
    Phone phone;
    std::vector<std::string> requests = {};

    Meeting(const Misbehaviour& misbehaviour, const ServerIdentity& identity)
        : with(misbehaviour),
          server(misbehaviour.script,
                 {.identity = misbehaviour.transport == Transport::tls ? std::optional(identity)
                                                                       : std::nullopt}),
          phone((misbehaviour.transport == Transport::plain ? "http://127.0.0.1:"
                                                            : "https://127.0.0.1:") +
                std::to_string(server.port())) {}
  };

  /// The time that this machine needs now to run so many programs at once.
  static Clock::duration timeToStart(std::size_t count) {
    const auto before = Clock::now();
    std::vector<std::unique_ptr<linux_platform::ChildProcess>> programs;
    for (std::size_t number = 0; number < count; ++number) {
      programs.push_back(std::make_unique<linux_platform::ChildProcess>(linux_platform::ProgramCall{
          .program = linux_platform::programFolder() / "kivo-intents", .arguments = {"catalog"}}));
    }
    for (const auto& program : programs) program->wait();
    return Clock::now() - before;
  }

  void meetAtOnce(const std::vector<Misbehaviour>& some, Clock::duration longest) {
    longest += 2 * timeToStart(some.size());
    std::vector<std::unique_ptr<Meeting>> meetings;
    for (const Misbehaviour& one : some) {
      meetings.push_back(std::make_unique<Meeting>(one, identity_));
    }
    for (const auto& meeting : meetings) meeting->phone.start(trusted_.path().string());
    for (const auto& meeting : meetings) meeting->phone.wait();
    for (const auto& meeting : meetings) {
      SCOPED_TRACE(meeting->with.name);
      check(*meeting, longest);
    }
  }

  static void check(const Meeting& meeting, Clock::duration longest) {
    const Phone& phone = meeting.phone;
    EXPECT_LT(std::chrono::duration<double>(phone.took()).count(),
              std::chrono::duration<double>(longest).count());
    EXPECT_EQ(phone.result().status, 0);
    EXPECT_EQ(phone.result().errors, "");
    EXPECT_EQ(phone.disagreement(), "");
    const std::string& output = phone.result().output;
    const auto queue = phone.queue();
    switch (meeting.with.ending) {
      case Ending::trackedOrSavedOffline:
        if (queue.empty()) return expectTracked(output, queue);
        return expectSavedOffline(meeting, queue);
      case Ending::tracked:
        return expectTracked(output, queue);
      case Ending::ignored:
        EXPECT_EQ(output, "SMS ignored - not a transaction\n");
        EXPECT_TRUE(queue.empty());
        return;
      case Ending::declined:
        EXPECT_EQ(output, "Transaction was declined - not tracked\n");
        EXPECT_TRUE(queue.empty());
        return;
      case Ending::savedOffline:
        return expectSavedOffline(meeting, queue);
    }
  }

  static void expectTracked(const std::string& output, const std::vector<PendingSmsItem>& queue) {
    EXPECT_EQ(output, "Tracked EGP\u00a0150.00 at Carrefour\n");
    EXPECT_TRUE(queue.empty());
  }

  static void expectSavedOffline(const Meeting& meeting, const std::vector<PendingSmsItem>& queue) {
    const std::string& output = meeting.phone.result().output;
    EXPECT_THAT(output, testing::StartsWith("ProcessSMSIntent error: " + meeting.with.error));
    EXPECT_THAT(output, testing::EndsWith("\nSaved offline - will process when connected\n"));
    EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 2);
    ASSERT_EQ(queue.size(), 1U);
    EXPECT_EQ(queue[0].smsText, smsText);
    EXPECT_EQ(queue[0].retryCount, 0);
    for (const std::string& request : meeting.server.requests()) {
      if (request.find("\r\n\r\n{") == std::string::npos) continue;
      const auto body = request.substr(request.find("\r\n\r\n") + 4);
      EXPECT_EQ(platform::JSONDecoder::object(body).decodeString("idempotency_key"), queue[0].id);
    }
    EXPECT_LE(meeting.server.connections(), 1);
  }

  PrivateFolders folders_;
  TestAuthority authority_;
  TemporaryFolder trusted_;
  ServerIdentity identity_ = authority_.certify();
};

TEST_F(AMisbehavingServer, LeavesTheTextQueuedUnlessItsAnswerIsValid) {
  meetEach(brokenAnswers(), 8);
}

TEST_F(AMisbehavingServer, LeavesTheTextQueuedWhenItBreaksTheConnection) {
  meetEach(brokenConnections(), 8);
}

TEST_F(AMisbehavingServer, LeavesTheTextQueuedWithoutA200AndItsRedirectUnfollowed) {
  const ScriptedServer elsewhere(answering(httpAnswer(200, trackedBody())));
  meetEach(answersOfEachStatus(elsewhere.url()), 8);
  EXPECT_EQ(elsewhere.connections(), 0);
}

TEST_F(AMisbehavingServer, DelaysARunByTheTimeoutAtMost) {
  const auto all = slowServers();
  meetEach(all, all.size());
}

TEST_F(AMisbehavingServer, HasItsCompressedBodyLeftCompressed) {
  // 100 MB of zeros, in less than 100 KB.
  const std::string bomb =
      linux_platform::runProgram(
          {.program = "sh", .arguments = {"-c", "head -c 100000000 /dev/zero | gzip"}})
          .output;
  ASSERT_GT(bomb.size(), 50'000U);
  ASSERT_LT(bomb.size(), 200'000U);
  const std::string end = "Content-Length: " + std::to_string(bomb.size()) + "\r\n\r\n" + bomb;
  meetEach({{"as content", answering("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n" + end),
             Ending::savedOffline, "DecodingError dataCorrupted"},
            {"as transfer", answering("HTTP/1.1 200 OK\r\nTransfer-Encoding: gzip\r\n\r\n" + bomb),
             Ending::savedOffline, "DecodingError dataCorrupted"}},
           2, 5s);
}

TEST_F(AMisbehavingServer, CausesATimeoutWhenItAcceptsNoConnection) {
  const SilentPort silent;
  Phone phone("http://127.0.0.1:" + std::to_string(silent.port()));
  phone.start("");
  phone.wait();
  EXPECT_GE(phone.took(), limit);
  EXPECT_LT(phone.took(), limit + rest);
  EXPECT_EQ(phone.result().output,
            "ProcessSMSIntent error: URLError timedOut: The server did not answer in time\n"
            "Saved offline - will process when connected\n");
  EXPECT_EQ(phone.queue().size(), 1U);
}

}  // namespace
}  // namespace kivo::testkit
