#include "platform/foundation/user_defaults.h"

#include <cmath>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "suite_test.h"
#include "testkit/written_output.h"

namespace kivo::platform {
namespace {

using testkit::RawStore;

using ASuite = SuiteTest;

TEST_F(ASuite, ShowsOtherHandlesAPublishedWrite) {
  UserDefaults suite = open();
  const UserDefaults other = open();
  suite.setDouble("lock", 4.5);
  EXPECT_TRUE(suite.publish());
  EXPECT_EQ(other.doubleForKey("lock"), 4.5);
}

TEST_F(ASuite, ReadsAnAbsentKeyAsAbsentOrZero) {
  const UserDefaults suite = open();
  EXPECT_EQ(suite.stringForKey("userId"), std::nullopt);
  EXPECT_EQ(suite.doubleForKey("smsQueueDrainLock"), 0.0);
  EXPECT_TRUE(suite.dictionaryRepresentation().empty());
}

TEST_F(ASuite, KeepsTextsAndNumbersForTheNextRun) {
  {
    UserDefaults suite = open();
    suite.setObject("currency", "EGP");
    suite.setDouble("smsQueueDrainLock", 1769850300.25);
    EXPECT_TRUE(suite.synchronize());
  }
  const UserDefaults next = open();
  EXPECT_EQ(next.stringForKey("currency"), "EGP");
  EXPECT_EQ(next.doubleForKey("smsQueueDrainLock"), 1769850300.25);
}

TEST_F(ASuite, ReadsItsOwnWritesBeforeASynchronize) {
  UserDefaults suite = open();
  suite.setObject("todayCount", "1");
  suite.setDouble("smsQueueDrainLock", 5);
  EXPECT_EQ(suite.stringForKey("todayCount"), "1");
  EXPECT_EQ(suite.doubleForKey("smsQueueDrainLock"), 5);
  EXPECT_EQ(suite.dictionaryRepresentation().size(), 2U);
}

TEST_F(ASuite, ShowsWritesToOtherHandlesOnlyAfterASynchronize) {
  UserDefaults writer = open();
  const UserDefaults reader = open();
  writer.setObject("pendingSmsQueue", "[]");
  EXPECT_EQ(reader.stringForKey("pendingSmsQueue"), std::nullopt);
  writer.synchronize();
  EXPECT_EQ(reader.stringForKey("pendingSmsQueue"), "[]");
}

TEST_F(ASuite, ReadsTheStoreEachTime) {
  UserDefaults first = open();
  UserDefaults second = open();
  first.setObject("currency", "EGP");
  first.synchronize();
  EXPECT_EQ(first.stringForKey("currency"), "EGP");
  second.setObject("currency", "USD");
  second.synchronize();
  EXPECT_EQ(first.stringForKey("currency"), "USD");
}

TEST_F(ASuite, LetsTheLastWriterWin) {
  UserDefaults first = open();
  UserDefaults second = open();
  first.setObject("monthlyTotal", "1.0");
  second.setObject("monthlyTotal", "2.0");
  second.synchronize();
  first.synchronize();
  EXPECT_EQ(second.stringForKey("monthlyTotal"), "1.0");
}

TEST_F(ASuite, DropsUnsynchronizedWritesWithItsHandle) {
  { open().setObject("currency", "EGP"); }
  EXPECT_EQ(open().stringForKey("currency"), std::nullopt);
}

TEST_F(ASuite, KeepsKeysWithEmptyValues) {
  UserDefaults suite = open();
  suite.setObject("pendingSmsQueue", "[]");
  suite.setObject("userId", "");
  suite.setDouble("smsQueueDrainLock", 0);
  suite.synchronize();
  EXPECT_EQ(suite.stringForKey("userId"), "");
  EXPECT_EQ(RawStore(file()).run("SELECT key, value FROM defaults ORDER BY key"),
            "pendingSmsQueue|[]\nsmsQueueDrainLock|0.0\nuserId|\n");
}

TEST_F(ASuite, ReplacesAValueAndItsType) {
  UserDefaults suite = open();
  suite.setObject("key", "12");
  suite.synchronize();
  suite.setDouble("key", 12);
  suite.synchronize();
  EXPECT_EQ(suite.stringForKey("key"), std::nullopt);
  EXPECT_EQ(suite.doubleForKey("key"), 12);
}

TEST_F(ASuite, StoresTextAsTextAndFloatAsReal) {
  UserDefaults suite = open();
  suite.setObject("text", "3");
  suite.setDouble("float", 3);
  suite.synchronize();
  EXPECT_EQ(RawStore(file()).run("SELECT key, typeof(value) FROM defaults ORDER BY key"),
            "float|real\ntext|text\n");
}

TEST_F(ASuite, ReadsAnIntegerAsAFloatOfItsValue) {
  leaveBehind("('integer', 42)");
  EXPECT_EQ(open().doubleForKey("integer"), 42.0);
}

TEST_F(ASuite, ReadsATextAsTheFloatZero) {
  leaveBehind("('text', '42')");
  EXPECT_EQ(open().doubleForKey("text"), 0.0);
}

TEST_F(ASuite, ReadsOtherTypesAsAnAbsentText) {
  leaveBehind("('integer', 42), ('real', 4.5), ('blob', x'4142')");
  const UserDefaults suite = open();
  EXPECT_EQ(suite.stringForKey("integer"), std::nullopt);
  EXPECT_EQ(suite.stringForKey("real"), std::nullopt);
  EXPECT_EQ(suite.stringForKey("blob"), std::nullopt);
  EXPECT_EQ(suite.doubleForKey("blob"), 0.0);
}

TEST_F(ASuite, RepairsAStoredTextThatIsNotUtf8) {
  leaveBehind("('text', CAST(x'61ff62' AS TEXT))");
  const UserDefaults suite = open();
  EXPECT_EQ(suite.stringForKey("text"), "a\uFFFDb");
  EXPECT_EQ(std::get<std::string>(suite.dictionaryRepresentation().at("text")), "a\uFFFDb");
}

TEST_F(ASuite, RepairsAPendingTextThatIsNotUtf8) {
  UserDefaults suite = open();
  suite.setObject("text", "a\xff");
  EXPECT_EQ(suite.stringForKey("text"), "a\uFFFD");
  suite.synchronize();
  EXPECT_EQ(suite.stringForKey("text"), "a\uFFFD");
}

TEST_F(ASuite, KeepsNulBytesInKeysAndTexts) {
  using namespace std::string_literals;
  {
    UserDefaults suite = open();
    suite.setObject("a\0b"s, "x\0y"s);
    suite.setObject("a", "other");
    suite.synchronize();
  }
  const UserDefaults next = open();
  EXPECT_EQ(next.stringForKey("a\0b"s), "x\0y"s);
  EXPECT_EQ(next.stringForKey("a"), "other");
}

TEST_F(ASuite, KeepsLongTextsAndEmptyKeys) {
  const std::string megabyte(1 << 20, 'x');
  UserDefaults suite = open();
  suite.setObject("", megabyte);
  suite.synchronize();
  EXPECT_EQ(open().stringForKey(""), megabyte);
}

TEST_F(ASuite, KeepsEveryDoubleExceptNaN) {
  UserDefaults suite = open();
  for (const double value : {0.1, -0.0, 5e-324, 1.7976931348623157e308, HUGE_VAL, -HUGE_VAL}) {
    suite.setDouble("value", value);
    ASSERT_TRUE(suite.synchronize());
    EXPECT_EQ(suite.doubleForKey("value"), value);
  }
}

TEST_F(ASuite, ListsValuesOfEveryTypeTogetherWithPendingOnes) {
  leaveBehind("('integer', 42), ('real', 4.5), ('blob', x'41'), ('text', 'old')");
  UserDefaults suite = open();
  suite.setObject("text", "new");
  const std::map<std::string, UserDefaults::Value> expected{
      {"integer", std::int64_t{42}}, {"real", 4.5}, {"blob", std::monostate{}}, {"text", "new"}};
  EXPECT_EQ(suite.dictionaryRepresentation(), expected);
}

TEST_F(ASuite, KeepsItsPendingWritesWhenItIsMoved) {
  UserDefaults first = open();
  first.setObject("key", "value");
  UserDefaults second = std::move(first);
  EXPECT_TRUE(second.synchronize());
  EXPECT_EQ(open().stringForKey("key"), "value");
}

TEST_F(ASuite, ReportsAFailedWriteInOneLineWithoutValues) {
  UserDefaults suite = open();
  suite.setObject("secretKey", "secretText");
  suite.setDouble("notANumber", std::nan(""));
  testing::internal::CaptureStderr();
  EXPECT_FALSE(suite.synchronize());
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "the shared store could not be written: constraint failed\n");
}

TEST_F(ASuite, CommitsAWriteGroupAtomically) {
  UserDefaults suite = open();
  suite.setObject("a", "1");
  suite.setDouble("b", std::nan(""));
  suite.setObject("c", "3");
  testing::internal::CaptureStderr();
  EXPECT_FALSE(suite.synchronize());
  testing::internal::GetCapturedStderr();
  EXPECT_TRUE(open().dictionaryRepresentation().empty());
}

TEST_F(ASuite, DiscardsTheValuesOfAFailedWriteAndContinues) {
  UserDefaults suite = open();
  suite.setObject("lost", "x");
  suite.setDouble("notANumber", std::nan(""));
  testing::internal::CaptureStderr();
  suite.synchronize();
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(suite.stringForKey("lost"), std::nullopt);
  suite.setObject("kept", "y");
  EXPECT_TRUE(suite.synchronize());
  EXPECT_EQ(open().dictionaryRepresentation().size(), 1U);
}

// Points the first page that holds nothing but the long text of x's at a page that there is not.
void damageLongText(const std::filesystem::path& file) {
  constexpr std::size_t pageSize = 4096;
  std::fstream bytes(file, std::ios::binary | std::ios::in | std::ios::out);
  const std::string all{std::istreambuf_iterator<char>(bytes), {}};
  std::size_t page = 0;
  while (page < all.size() && all.compare(page + 4, 100, std::string(100, 'x')) != 0) {
    page += pageSize;
  }
  bytes.clear();
  bytes.seekp(static_cast<std::streamoff>(page));
  bytes.write("\x7f\xff\xff\xff", 4);
}

TEST_F(ASuite, WritesNothingAfterAFailedRead) {
  leaveBehind("('pendingSmsQueue', '" + std::string(20'000, 'x') + "'), ('currency', 'EGP')");
  damageLongText(file());
  UserDefaults suite = open();
  bool committed = true;
  const auto written = testkit::writtenBy([&] {
    if (suite.stringForKey("pendingSmsQueue")) return;
    suite.setObject("pendingSmsQueue", "[]");
    suite.setObject("currency", "USD");
    committed = suite.synchronize();
  });
  EXPECT_FALSE(committed);
  EXPECT_EQ(written.err,
            "the shared store could not be read: database disk image is malformed\n"
            "the shared store could not be written: database disk image is malformed\n");
  EXPECT_EQ(suite.stringForKey("currency"), "EGP");
  suite.setObject("currency", "USD");
  EXPECT_TRUE(suite.synchronize());
}

TEST_F(ASuite, TouchesNoFileWithoutPendingWrites) {
  UserDefaults suite = open();
  RawStore writer(file());
  writer.run("BEGIN IMMEDIATE");  // a commit would have to wait for it
  EXPECT_TRUE(suite.synchronize());
}

}  // namespace
}  // namespace kivo::platform
