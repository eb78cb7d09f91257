#include "sms_watcher/watch_settings.h"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "testkit/private_folders.h"
#include "testkit/written_output.h"

namespace kivo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testkit::writtenBy;

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int time = 0; time < times; ++time) all += text;
  return all;
}

class AWatchSettingsFile : public testing::Test {
 protected:
  void write(const std::string& text) {
    std::filesystem::create_directories(folders.home() / "config" / "kivo");
    std::ofstream(folders.home() / "config" / "kivo" / "sms-watcher.toml") << text;
  }
  // Its output on standard error; "same" when nothing changed.
  std::string refresh() {
    bool changed = false;
    const auto written = writtenBy([&] { changed = settings.refresh(); });
    EXPECT_EQ(changed, !written.err.empty());
    return changed ? written.err : "same";
  }

  testkit::PrivateFolders folders;
  WatchSettings settings;
};

TEST_F(AWatchSettingsFile, ReportsOnceThatNoSenderIsNamed) {
  EXPECT_THAT(refresh(), HasSubstr("no sender is named"));
  EXPECT_EQ(refresh(), "same");
  write("");
  EXPECT_EQ(refresh(), "same");
  write("senders = []");
  EXPECT_EQ(refresh(), "same");
  EXPECT_THAT(settings.senders(), IsEmpty());
  EXPECT_FALSE(settings.broken());
}

TEST_F(AWatchSettingsFile, IsReadAgainOnEachRefresh) {
  write("senders = ['MyBank']");
  EXPECT_EQ(refresh(), "kivo-sms-watcher: handing on the messages of 1 sender\n");
  write("senders = ['MyBank', \"+20 100*\"] # both\n");
  EXPECT_EQ(refresh(), "kivo-sms-watcher: handing on the messages of 2 senders\n");
  EXPECT_THAT(settings.senders(), ElementsAre("MyBank", "+20 100*"));
  EXPECT_EQ(refresh(), "same");
}

TEST_F(AWatchSettingsFile, NamesNoSenderWhenItIsInvalid) {
  const std::vector<std::pair<std::string, std::string>> broken{
      {"senders = [", "line 1: this is not valid TOML"},
      {"\nsenders = 'MARK'", "line 2: senders must be a list of texts in quotes"},
      {"senders = ['MARK', 7]", "line 1: a sender must be a text in quotes"},
      {"senders = ['MARK']\nsender = 'MARK'", "line 2: unknown key; the only one is senders"},
      {"\nsenders" + repeated(".x", 100'000) + " = 'MARK'",
       "line 2: a dot is allowed only within quotes"},
      {"senders = " + repeated("[", 100'000), "line 1: this is not valid TOML"},
      {"senders = ['MARK', '']", "a sender is empty"},
      {"senders = ['MARK', '*']", "a sender of * alone would hand on the messages of everybody"},
      {std::string("senders = ['\xFF']"), "this is not valid TOML"},
      {std::string("senders = ['a\0b']", 17), "this is not valid TOML"},
      {"#" + std::string(1 << 20, 'x'), "it cannot be read"},
  };
  for (const auto& [text, words] : broken) {
    write("senders = ['MyBank']");
    settings.refresh();
    write(text);
    const std::string said = refresh();
    EXPECT_THAT(said, HasSubstr(words + "; no message is handed on until this is fixed\n"));
    EXPECT_EQ(said.find("MARK"), std::string::npos);
    EXPECT_THAT(settings.senders(), IsEmpty());
    EXPECT_TRUE(settings.broken());
    EXPECT_EQ(refresh(), "same");
  }
}

TEST_F(AWatchSettingsFile, NamesNoSenderWhenItIsAFolder) {
  std::filesystem::create_directories(folders.home() / "config" / "kivo" / "sms-watcher.toml");
  EXPECT_THAT(refresh(), HasSubstr("it cannot be read"));
  EXPECT_TRUE(settings.broken());
}

TEST_F(AWatchSettingsFile, HasItsModificationTime) {
  write("senders = ['MyBank']");
  refresh();
  const auto age = platform::Date::now() - settings.changed();
  EXPECT_GE(age, -std::chrono::seconds(1));
  EXPECT_LE(age, std::chrono::minutes(1));
}

}  // namespace
}  // namespace kivo
