#include "sms_watcher/watcher_record.h"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "platform/linux/foundation/failure.h"
#include "testkit/private_folders.h"
#include "testkit/raw_store.h"
#include "testkit/set_clock.h"

namespace kivo::linux_platform {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;
using testing::UnorderedElementsAre;

class AWatcherRecord : public testing::Test {
 protected:
  static constexpr platform::Moment start = testkit::utc(2026, 11, 21);

  static WatcherRecord open(int remembered = WatcherRecord::mostRemembered) {
    return WatcherRecord::open(remembered);
  }
  [[nodiscard]] std::filesystem::path file() const {
    return folders.dataHome() / "app.kivo.SmsWatcher" / "defaults.sqlite3";
  }
  static std::string mark(const WatcherRecord& record, int number) {
    return record.markOf("MyBank", "now", std::to_string(number));
  }
  static int handledOf(const WatcherRecord& record, int count) {
    int handled = 0;
    for (int i = 0; i < count; ++i) handled += record.isHandled(mark(record, i)) ? 1 : 0;
    return handled;
  }

  testkit::PrivateFolders folders;
};

TEST_F(AWatcherRecord, RemembersAHandledMessageInEveryProcess) {
  std::string known;
  {
    WatcherRecord record = open();
    known = record.markOf("MyBank", "now", "Paid 150");
    EXPECT_FALSE(record.isHandled(known));
    EXPECT_TRUE(record.setHandled(known, start));
    EXPECT_TRUE(record.isHandled(known));
  }
  const WatcherRecord record = open();
  EXPECT_EQ(record.markOf("MyBank", "now", "Paid 150"), known);
  EXPECT_TRUE(record.isHandled(known));
}

TEST_F(AWatcherRecord, DistinguishesSenderTimeAndText) {
  const WatcherRecord record = open();
  const std::set<std::string> marks{record.markOf("ab", "c", "d"), record.markOf("a", "bc", "d"),
                                    record.markOf("a", "b", "cd"), record.markOf("", "abc", "d"),
                                    record.markOf("ab", "cd", "")};
  EXPECT_EQ(marks.size(), 5U);
}

TEST_F(AWatcherRecord, IsSaltedDifferentlyOnEachPhone) {
  const std::string here = open().markOf("MyBank", "now", "Paid 150");
  const testkit::PrivateFolders elsewhere;
  EXPECT_NE(open().markOf("MyBank", "now", "Paid 150"), here);
}

TEST_F(AWatcherRecord, ContainsOnlyHashes) {
  WatcherRecord record = open();
  record.setHandled(record.markOf("MARKSENDER", "MARKTIME", "MARKTEXT"), start);
  record.namedSince({"MARKSENDER"}, start, start);
  const std::string rows = testkit::RawStore(file()).run("SELECT * FROM defaults");
  EXPECT_THAT(rows, Not(HasSubstr("MARK")));
  EXPECT_THAT(rows, HasSubstr("message."));
}

TEST_F(AWatcherRecord, KeepsEachMessageThatAModemHolds) {
  WatcherRecord record = open(3);
  std::set<std::string> held;
  for (int i = 0; i < 20; ++i) {
    record.setHandled(mark(record, i), start);
    held.insert(mark(record, i));
  }
  record.heldByModems(held, start + 1s);
  EXPECT_EQ(handledOf(record, 20), 20);
}

TEST_F(AWatcherRecord, ForgetsTheOldestMessagesThatNoModemHolds) {
  WatcherRecord record = open(3);
  for (int i = 0; i < 20; ++i) record.setHandled(mark(record, i), start + std::chrono::seconds(i));
  record.namedSince({"MyBank"}, start, start);
  record.heldByModems({mark(record, 0), mark(record, 99)}, start + 60s);
  EXPECT_EQ(handledOf(record, 20), 4);
  for (const int kept : {0, 17, 18, 19}) EXPECT_TRUE(record.isHandled(mark(record, kept))) << kept;
  EXPECT_FALSE(record.isHandled(mark(record, 99)));
  EXPECT_THAT(record.namedSince({"MyBank"}, start + 60s, start + 60s),
              UnorderedElementsAre(Pair("MyBank", start)));
}

TEST_F(AWatcherRecord, CountsAgeFromWhenAModemLastHeldAMessage) {
  WatcherRecord record = open(3);
  for (int i = 0; i < 4; ++i) record.setHandled(mark(record, i), start + std::chrono::seconds(i));
  record.heldByModems({mark(record, 0)}, start + 60s);
  record.heldByModems({}, start + 61s);
  EXPECT_TRUE(record.isHandled(mark(record, 0)));
  EXPECT_FALSE(record.isHandled(mark(record, 1)));
}

TEST_F(AWatcherRecord, RemembersWhenASenderWasNamed) {
  EXPECT_THAT(open().namedSince({"One"}, start, start), UnorderedElementsAre(Pair("One", start)));
  WatcherRecord record = open();
  EXPECT_THAT(record.namedSince({"One", "Two"}, start + 1h, start + 1h),
              UnorderedElementsAre(Pair("One", start), Pair("Two", start + 1h)));
  record.namedSince({"Two"}, start + 2h, start + 2h);
  EXPECT_THAT(record.namedSince({"One"}, start + 3h, start + 3h),
              UnorderedElementsAre(Pair("One", start + 3h)));
}

TEST_F(AWatcherRecord, CountsEachMessageAsHandledWhenItCannotBeRead) {
  WatcherRecord record = open();
  testkit::RawStore(file()).run("DROP TABLE defaults");
  testing::internal::CaptureStderr();
  EXPECT_TRUE(record.isHandled(mark(record, 1)));
  EXPECT_FALSE(record.setHandled(mark(record, 1), start));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "kivo-sms-watcher: the record of handled messages cannot be used\n"
            "kivo-sms-watcher: the record of handled messages cannot be used\n");
}

TEST_F(AWatcherRecord, DoesNotReplaceAForeignFile) {
  std::filesystem::create_directories(file().parent_path());
  std::ofstream(file()) << "somebody's letter, which is longer than the header of a database is, "
                           "so that it cannot be taken for an empty one";
  EXPECT_THROW(WatcherRecord::open(), Failure);
}

}  // namespace
}  // namespace kivo::linux_platform
