#include "platform/linux/store/replaced_text.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "suite_test.h"
#include "testkit/other_process.h"
#include "testkit/stored_bytes.h"

namespace kivo::platform {
namespace {

using testing::HasSubstr;
using testing::Not;
using testkit::bytesIn;
using testkit::OtherProcess;
using testkit::RawStore;

constexpr const char* secret = "SECRET text that is longer than a figure";

class AReplacedText : public SuiteTest {
 protected:
  // Another process that has the suite open all the time, so that closing it erases nothing, and
  // that has a read under way until the test goes on.
  std::unique_ptr<OtherProcess> reader() {
    auto process = std::make_unique<OtherProcess>([this](OtherProcess& self) {
      RawStore raw(file());
      raw.run("BEGIN; SELECT * FROM defaults");
      self.reached();
      self.waitForTest();
      raw.run("COMMIT");
      self.reached();
      self.waitForTest();
      return true;
    });
    process->waitForIt();
    return process;
  }

  static void write(std::string_view key, std::string_view text) {
    UserDefaults suite = open();
    suite.setObject(key, text);
    ASSERT_TRUE(suite.synchronize());
  }

  [[nodiscard]] bool owed() const { return std::filesystem::exists(file().string() + "-unerased"); }
};

TEST_F(AReplacedText, IsErasedWhileAnotherProcessHasTheFilesOpen) {
  open();
  const auto other = reader();
  other->goOn();
  other->waitForIt();
  write("queue", secret);
  ASSERT_THAT(bytesIn(folder()), HasSubstr("SECRET"));
  write("queue", "[]");
  EXPECT_THAT(bytesIn(folder()), Not(HasSubstr("SECRET")));
  EXPECT_FALSE(owed());
  other->goOn();
  EXPECT_EQ(other->end(), 0);
}

TEST_F(AReplacedText, IsErasedAtTheNextOpenWhenAReaderPreventedIt) {
  write("queue", secret);
  const auto other = reader();
  const auto before = std::chrono::steady_clock::now();
  write("queue", "[]");
  EXPECT_EQ(open().stringForKey("queue"), "[]");
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(2));
  EXPECT_THAT(bytesIn(folder()), HasSubstr("SECRET"));
  EXPECT_TRUE(owed());

  other->goOn();
  other->waitForIt();
  EXPECT_EQ(open().stringForKey("queue"), "[]");
  EXPECT_THAT(bytesIn(folder()), Not(HasSubstr("SECRET")));
  EXPECT_FALSE(owed());
  other->goOn();
  EXPECT_EQ(other->end(), 0);
}

TEST_F(AReplacedText, IsErasedWhenALongerTextOrANumberReplacesIt) {
  const auto other = [this] {
    open();
    return reader();
  }();
  other->goOn();
  other->waitForIt();
  write("queue", secret);
  write("queue", std::string(100, 'x'));
  EXPECT_THAT(bytesIn(folder()), Not(HasSubstr("SECRET")));
  write("queue", secret);
  {
    UserDefaults suite = open();
    suite.setDouble("queue", 1);
    suite.synchronize();
  }
  EXPECT_THAT(bytesIn(folder()), Not(HasSubstr("SECRET")));
  other->goOn();
  EXPECT_EQ(other->end(), 0);
}

TEST_F(AReplacedText, NeedsNoErasureWhenAListGrowsOrANumberChanges) {
  open();
  const auto other = reader();  // would leave a note behind
  write("queue", "[\"a text that is longer than a figure\"]");
  write("queue", "[\"a text that is longer than a figure\",\"and another\"]");
  write("total", "-1.7976931348623157e+308");
  write("total", "0.0");
  EXPECT_FALSE(owed());
  other->goOn();
  other->waitForIt();
  other->goOn();
  EXPECT_EQ(other->end(), 0);
}

TEST_F(AReplacedText, IsErasedWithoutChangingOtherValues) {
  leaveBehind("('integer', 42), ('real', 4.5), ('blob', x'41'), ('text', 'kept')");
  write("queue", secret);
  write("queue", "[]");
  RawStore raw(file());
  EXPECT_EQ(raw.run("SELECT key, typeof(value), value FROM defaults ORDER BY key"),
            "blob|blob|A\ninteger|integer|42\nqueue|text|[]\nreal|real|4.5\ntext|text|kept\n");
  EXPECT_EQ(raw.run("PRAGMA integrity_check; PRAGMA user_version; PRAGMA application_id"),
            "ok\n1\n1265202799\n");
}

// The rows outgrow a page while the text is in it, and SQLite moves them, leaving a copy behind
// that it does not overwrite.
TEST_F(AReplacedText, IsErasedFromTheFreeSpaceOfItsFormerPages) {
  const auto filler = [](std::size_t length) { return std::string(length, 'x'); };
  const auto list = [](std::size_t length) {
    std::string text = "[";
    while (text.size() < length) text += "SECRET,";
    return text;
  };
  write("queue", list(400));
  write("k1", filler(60));
  write("k4", filler(700));
  write("k2", filler(1200));
  write("queue", list(1500));
  write("k4", filler(2000));
  write("queue", "[]");
  EXPECT_THAT(bytesIn(folder()), Not(HasSubstr("SECRET")));
}

}  // namespace
}  // namespace kivo::platform
