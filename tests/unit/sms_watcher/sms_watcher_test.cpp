#include "sms_watcher/sms_watcher.h"

#include <gmock/gmock.h>

#include "platform/foundation/iso8601_date_formatter.h"
#include "testkit/private_folders.h"
#include "testkit/raw_store.h"
#include "testkit/set_clock.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using Extent = SmsWatcher::Extent;
using testing::ElementsAre;
using testing::IsEmpty;

class TheSmsWatcher : public testing::Test {
 protected:
  static constexpr platform::Moment start = testkit::utc(2026, 11, 21, 10, 0, 0);

  TheSmsWatcher() { watcher.setSenders({"MyBank"}, start); }

  SmsWatcher freshWatcher() {
    return {WatcherRecord::open(), {.settle = 0s, .first = 2s, .longest = 10s}};
  }
  static ModemMessage message(const std::string& text, std::chrono::seconds age = 1s,
                              const std::string& number = "MyBank") {
    return {.number = number,
            .text = text,
            .timestamp = platform::ISO8601DateFormatter::string(start - age)};
  }
  std::size_t take(const std::vector<ModemMessage>& messages) {
    return watcher.take(messages, Extent::some, now);
  }
  // The messages that are handed on now, when each is answered.
  std::vector<std::string> handedOn() {
    std::vector<std::string> texts;
    while (watcher.untilNext(now) == 0ms) {
      texts.push_back(watcher.beginNext());
      watcher.answered();
    }
    return texts;
  }
  void failOnce() {
    ASSERT_EQ(watcher.untilNext(now), 0ms);
    watcher.beginNext();
    watcher.failed(now);
  }

  testkit::PrivateFolders folders;
  testkit::SetClock clock{start};
  SmsWatcher::Clock::time_point now{};
  SmsWatcher watcher = freshWatcher();
};

TEST_F(TheSmsWatcher, IsIdleAtFirst) { EXPECT_EQ(watcher.untilNext(now), std::nullopt); }

TEST_F(TheSmsWatcher, HandsOnMessagesInOrderOfTime) {
  take({message("Two", 20s), message("Three", 10s), message("One", 30s)});
  EXPECT_THAT(handedOn(), ElementsAre("One", "Two", "Three"));
}

TEST_F(TheSmsWatcher, HandsOnMessagesWithoutATimeLast) {
  ModemMessage first = message("No time");
  first.timestamp = "";
  ModemMessage second = message("No time either");
  second.timestamp = "soon";
  take({first, second, message("Two", 10s), message("One", 20s)});
  EXPECT_THAT(handedOn(), ElementsAre("One", "Two", "No time", "No time either"));
}

TEST_F(TheSmsWatcher, HandsOnOneMessageAtATime) {
  take({message("One", 2s), message("Two")});
  EXPECT_EQ(watcher.beginNext(), "One");
  EXPECT_EQ(watcher.untilNext(now), std::nullopt);
  take({message("Earlier", 30s)});
  EXPECT_EQ(watcher.untilNext(now), std::nullopt);
  watcher.answered();
  EXPECT_THAT(handedOn(), ElementsAre("Earlier", "Two"));
}

TEST_F(TheSmsWatcher, AcceptsAMessageOnlyOnce) {
  take({message("One"), message("One")});
  take({message("One")});
  watcher.beginNext();
  take({message("One")});
  watcher.failed(now);
  take({message("One")});
  now += 2s;
  EXPECT_THAT(handedOn(), ElementsAre("One"));
  take({message("One")});
  EXPECT_THAT(handedOn(), IsEmpty());
  watcher = freshWatcher();
  watcher.setSenders({"MyBank"}, start);
  take({message("One")});
  EXPECT_THAT(handedOn(), IsEmpty());
}

TEST_F(TheSmsWatcher, DistinguishesMessagesBySenderTimeAndText) {
  watcher.setSenders({"MyBank", "Other"}, start);
  take({message("Paid", 3s), message("Paid", 2s), message("Paid!", 3s),
        message("Paid", 3s, "Other")});
  EXPECT_EQ(handedOn().size(), 4U);
}

TEST_F(TheSmsWatcher, DoublesTheRetryDelayUpToItsLimit) {
  take({message("One")});
  for (const auto pause : {2s, 4s, 8s, 10s, 10s}) {
    failOnce();
    EXPECT_EQ(watcher.untilNext(now), pause);
    EXPECT_EQ(watcher.untilNext(now + pause - 1ms), 1ms);
    now += pause;
  }
  EXPECT_THAT(handedOn(), ElementsAre("One"));
  take({message("Two")});
  failOnce();
  EXPECT_EQ(watcher.untilNext(now), 2s);
}

TEST_F(TheSmsWatcher, RetriesAFailedMessageAfterAllOthers) {
  take({message("One", 3s), message("Two", 2s)});
  failOnce();
  take({message("Three", 1s), message("Earliest", 9s)});
  EXPECT_THAT(handedOn(), ElementsAre("Earliest", "Two", "Three", "One"));
}

TEST_F(TheSmsWatcher, DoesNotDelayANewMessageForAFailedOne) {
  take({message("One")});
  failOnce();
  take({message("One")});
  EXPECT_EQ(watcher.untilNext(now), 2s);
  take({message("Two")});
  EXPECT_EQ(watcher.untilNext(now), 0ms);
}

TEST_F(TheSmsWatcher, DropsPendingMessagesOfARemovedSender) {
  watcher.setSenders({"MyBank", "Other"}, start);
  take({message("One", 4s, "Other"), message("Two", 3s), message("Three", 2s, "Other")});
  failOnce();
  watcher.setSenders({"MyBank"}, start);
  now += 2s;
  EXPECT_THAT(handedOn(), ElementsAre("Two"));
}

TEST_F(TheSmsWatcher, SkipsMessagesFromADayBeforeTheSenderWasNamed) {
  take({message("Old", 24h), message("Young", 24h - 1s)});
  EXPECT_THAT(handedOn(), ElementsAre("Young"));
}

TEST_F(TheSmsWatcher, CountsTheDayFromWhenTheSenderWasFirstNamed) {
  clock.advance(72h);
  watcher = freshWatcher();
  watcher.setSenders({"MyBank", "Other"}, start + 72h);
  take({message("Bank", 1h), message("Other", 1h, "Other")});
  EXPECT_THAT(handedOn(), ElementsAre("Bank"));
}

TEST_F(TheSmsWatcher, CountsTheDayFromWhenARemovedSenderIsNamedAgain) {
  watcher.setSenders({}, start);
  clock.advance(72h);
  watcher.setSenders({"MyBank"}, start + 72h);
  take({message("Bank", 1h)});
  EXPECT_THAT(handedOn(), IsEmpty());
}

TEST_F(TheSmsWatcher, IgnoresANamingTimeInTheFuture) {
  watcher.setSenders({}, start);
  watcher.setSenders({"MyBank"}, start + 1000h);
  take({message("Bank", 1h)});
  EXPECT_THAT(handedOn(), ElementsAre("Bank"));
}

TEST_F(TheSmsWatcher, TakesBackANamingTimeOnceAClockThatWasAheadIsRight) {
  clock.advance(1000h);
  watcher.setSenders({"MyBank", "Other"}, start + 1000h);
  clock.advance(-1000h);
  take({message("Other", 1h, "Other")});
  EXPECT_THAT(handedOn(), ElementsAre("Other"));
}

TEST_F(TheSmsWatcher, DoesNotReadANamingTimeInTheFutureFromItsRecord) {
  clock.advance(1000h);
  watcher.setSenders({"MyBank", "Other"}, start + 1000h);
  clock.advance(-1000h);
  watcher = freshWatcher();
  watcher.setSenders({"MyBank", "Other"}, start + 1000h);
  take({message("Other", 1h, "Other")});
  EXPECT_THAT(handedOn(), ElementsAre("Other"));

  // The corrected time is kept: it does not move on with each restart.
  clock.advance(72h);
  watcher = freshWatcher();
  watcher.setSenders({"MyBank", "Other"}, start + 1000h);
  take({message("While it did not run", -1h, "Other")});
  EXPECT_THAT(handedOn(), ElementsAre("While it did not run"));
}

TEST_F(TheSmsWatcher, ReturnsTheNumberOfMessagesThatAreTooOld) {
  EXPECT_EQ(take({message("Old", 48h), message("Older", 72h), message("Young"),
                  message("Old, of others", 48h, "Other")}),
            2U);
  EXPECT_EQ(take({message("Young")}), 0U);
}

TEST_F(TheSmsWatcher, SortsMessagesThatArriveTogether) {
  watcher = SmsWatcher(WatcherRecord::open(), {.settle = 1s, .first = 2s, .longest = 10s});
  watcher.setSenders({"MyBank"}, start);
  take({message("Two", 2s)});
  EXPECT_EQ(watcher.untilNext(now), 1s);
  now += 500ms;
  take({message("One", 3s)});
  EXPECT_EQ(watcher.untilNext(now), 1s);
  now += 1s;
  EXPECT_THAT(handedOn(), ElementsAre("One", "Two"));
}

TEST_F(TheSmsWatcher, DoesNotRepeatAMessageThatItCouldNotRecord) {
  take({message("One", 2s), message("Two", 1s)});
  testkit::RawStore(folders.dataHome() / "app.kivo.SmsWatcher" / "defaults.sqlite3")
      .run("CREATE TRIGGER full BEFORE INSERT ON defaults BEGIN SELECT RAISE(FAIL, 'full'); END");
  watcher.beginNext();
  EXPECT_FALSE(watcher.answered());
  take({message("One", 2s)});
  EXPECT_EQ(watcher.beginNext(), "Two");
  testkit::RawStore(folders.dataHome() / "app.kivo.SmsWatcher" / "defaults.sqlite3")
      .run("DROP TRIGGER full");
  EXPECT_TRUE(watcher.answered());  // both, now

  watcher = freshWatcher();
  watcher.setSenders({"MyBank"}, start);
  take({message("One", 2s), message("Two", 1s)});
  EXPECT_THAT(handedOn(), IsEmpty());
}

}  // namespace
}  // namespace kivo
