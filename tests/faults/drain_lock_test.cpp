// Drains of several processes that compete for the one drain lock.
#include <csignal>
#include <future>
#include <iostream>
#include <map>

#include "asked_form.h"
#include "platform/foundation/date.h"
#include "store_agreement.h"
#include "testkit/backend_answers.h"
#include "testkit/extension_program.h"
#include "testkit/queued_items.h"
#include "testkit/scripted_server.h"
#include "unreliable_backend.h"

namespace kivo::testkit {
namespace {

using namespace std::chrono_literals;
using linux_platform::ChildProcess;

class DrainsWithOneLock : public ExtensionProgram {
 protected:
  void waiting(std::vector<std::string> ids) {
    std::vector<PendingSmsItem> items;
    for (const std::string& id : ids) items.push_back(queuedItem(id));
    SharedStore opened = store();
    PendingSmsQueue::save(items, opened);
  }

  [[nodiscard]] double lock() const { return store().readFloat(StoreKeys::smsQueueDrainLock); }
  void takeLock(std::chrono::seconds ago) {
    SharedStore opened = store();
    opened.writeFloat(StoreKeys::smsQueueDrainLock,
                      platform::secondsSince1970(platform::Date::now()) -
                          std::chrono::duration<double>(ago).count());
    opened.synchronize();
  }

  /// How often a text was sent to `server`.
  static long sent(const ScriptedServer& server, const std::string& text) {
    const auto requests = server.requests();
    return std::count_if(requests.begin(), requests.end(), [&](const std::string& request) {
      return request.find("\"sms_text\":\"" + text + "\"") != std::string::npos;
    });
  }

  /// Answers well, but to the text "text a" only once it may.
  Script holdingTheFirst() {
    return [this](ServerConnection& connection) {
      const std::string request = connection.readRequest();
      if (request.find("\"text a\"") != std::string::npos) mayAnswer_.wait_for(20s);
      connection.write(httpAnswer(200, savedBody()));
    };
  }

  std::promise<void> release;

 private:
  std::shared_future<void> mayAnswer_ = release.get_future().share();
};

TEST_F(DrainsWithOneLock, SendEachItemOnceWithoutWaitingForTheLock) {
  const ScriptedServer server(holdingTheFirst());
  signIn(server.url());
  waiting({"a", "b", "c"});
  ChildProcess first(call({"perform", "ProcessSMSIntent", "--smsText", "-"}, "first"));
  ASSERT_TRUE(server.waitForRequests(2));
  EXPECT_GT(lock(), 0);
  const double taken = lock();

  EXPECT_THAT(processSMS("second").output, testing::StartsWith("Tracked "));
  EXPECT_EQ(server.requests().size(), 3U);
  EXPECT_EQ(queue().size(), 3U);
  EXPECT_EQ(lock(), taken);

  release.set_value();
  EXPECT_THAT(first.wait().output, testing::StartsWith("Tracked "));
  for (const char* const text : {"text a", "text b", "text c", "first", "second"}) {
    EXPECT_EQ(sent(server, text), 1) << text;
  }
  EXPECT_TRUE(queue().empty());
  EXPECT_EQ(lock(), 0);
  EXPECT_EQ(storeDisagreement(folders.storeFile()), "");
}

TEST_F(DrainsWithOneLock, TakeTheLockOfAKilledDrainAfterThirtySeconds) {
  const ScriptedServer server(holdingTheFirst());
  signIn(server.url());
  waiting({"a", "b", "c"});
  {
    ChildProcess killed(call({"perform", "ProcessSMSIntent", "--smsText", "-"}, "first"));
    ASSERT_TRUE(server.waitForRequests(2));
    killed.signal(SIGKILL);
    EXPECT_EQ(killed.wait().status, 128 + SIGKILL);
  }
  release.set_value();
  EXPECT_GT(lock(), 0);
  EXPECT_THAT(idsAndCounts(queue()), testing::ElementsAre("a:0", "b:0", "c:0"));

  takeLock(20s);  // 10 s remain for the run to come, however slow the machine
  EXPECT_THAT(processSMS("second").output, testing::StartsWith("Tracked "));
  EXPECT_EQ(queue().size(), 3U);
  takeLock(30s);
  EXPECT_THAT(processSMS("third").output, testing::StartsWith("Tracked "));
  EXPECT_TRUE(queue().empty());
  EXPECT_EQ(lock(), 0);
  EXPECT_EQ(storeDisagreement(folders.storeFile()), "");
}

// The lock is no atomic one: drains that begin at the very same time may both take it.
TEST_F(DrainsWithOneLock, StoreEachItemOnceWhenTheyRaceForTheLock) {
  const int rounds = inAskedForm(10, 50);
  int sentTwice = 0;
  UnreliableBackend idempotent(1, 0);
  signIn(idempotent.url());
  for (int round = 0; round < rounds; ++round) {
    std::vector<std::string> ids;
    for (const char* const letter : {"a", "b", "c"}) ids.push_back(letter + std::to_string(round));
    waiting(ids);
    const int before = idempotent.met()[Fault::none];
    std::vector<std::unique_ptr<ChildProcess>> runs;
    for (int number = 0; number < 8; ++number) {
      runs.push_back(std::make_unique<ChildProcess>(
          call({"perform", "ProcessSMSIntent", "--smsText", "-"},
               "run " + std::to_string(round) + "." + std::to_string(number))));
    }
    for (const auto& run : runs) {
      EXPECT_EQ(run->wait().output, "Tracked EGP\u00a01.00 at Shop\n");
    }
    sentTwice += idempotent.met()[Fault::none] - before - 8 - 3;
    EXPECT_TRUE(queue().empty());
    EXPECT_EQ(lock(), 0);
  }
  EXPECT_EQ(idempotent.stored().size(), static_cast<std::size_t>(rounds * (8 + 3)));
  EXPECT_EQ(idempotent.contradictions(), 0);
  EXPECT_EQ(storeDisagreement(folders.storeFile()), "");
  std::cout << "measured: " << rounds << " rounds of 8 drains at once on 3 items each, "
            << sentTwice << " items sent twice, each under its one key\n";
}

}  // namespace
}  // namespace kivo::testkit
