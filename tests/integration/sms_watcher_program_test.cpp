// The installed programs together: kivo-phone names a sender, the watcher reads its message, and
// the intents service that the bus starts processes it.
#include <csignal>
#include <fstream>
#include <memory>
#include <string_view>

#include <sys/stat.h>

#include "testkit/extension_program.h"
#include "watched_phone.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using linux_platform::ChildProcess;
using linux_platform::ProgramResult;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;
using testkit::eventually;
using testkit::message;

class AnInstalledWatcher : public testkit::WatchedPhone {
 protected:
  AnInstalledWatcher()
      : WatchedPhone(linux_platform::programFolder().parent_path() / "dbus-services") {}

  testkit::ToldBackend backend;
};

TEST_F(AnInstalledWatcher, HandsAMessageToTheIntentsService) {
  signIn(backend.url());
  backend.answers(200, testkit::savedAnswer("expense"));
  startModemManager();
  ChildProcess program({.program = linux_platform::programFolder() / "kivo-sms-watcher"});
  ASSERT_TRUE(eventually([&] { return phone.processOf(testkit::watcherName).has_value(); }));
  receive(message("1", "Your card was charged EGP 150.00"));
  receive(message("2", "Dinner?", "+201001234567"));
  const auto total = [] {
    return SharedStore::open(appGroup)->readText(StoreKeys::todayTotal).value_or("none");
  };
  EXPECT_TRUE(eventually([&] { return total() == "150.0"; }, 60s)) << total();
  ASSERT_THAT(backend.requests(), SizeIs(1));
  EXPECT_THAT(backend.requests()[0].body, HasSubstr("Your card was charged EGP 150.00"));
  program.signal(SIGTERM);
  EXPECT_EQ(program.wait(20s).status, 0);
}

TEST_F(AnInstalledWatcher, PrintsHelpAndVersion) {
  const auto run = [](const std::string& option) {
    return linux_platform::runProgram(
        {.program = linux_platform::programFolder() / "kivo-sms-watcher", .arguments = {option}});
  };
  EXPECT_THAT(run("--help").output, HasSubstr("Usage: kivo-sms-watcher"));
  EXPECT_THAT(run("--version").output, StartsWith("kivo-sms-watcher "));
  EXPECT_EQ(run("--unknown").status, 64);
}

class NamingSenders : public testing::Test {
 protected:
  static ProgramResult watch(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "watch");
    return linux_platform::runProgram({.program = linux_platform::programFolder() / "kivo-phone",
                                       .arguments = std::move(arguments)});
  }
  [[nodiscard]] std::filesystem::path file() const {
    return folders.home() / "config" / "kivo" / "sms-watcher.toml";
  }
  void write(const std::string& text) const {
    std::filesystem::create_directories(file().parent_path());
    std::ofstream(file()) << text;
  }

  testkit::PrivateFolders folders;
};

TEST_F(NamingSenders, ListsThemInTheirOrder) {
  EXPECT_EQ(watch({"list"}).output, "No sender is named, so no message is handed to Kivo.\n");
  EXPECT_EQ(watch({"add", "MyBank"}).output, "Messages of \"MyBank\" are handed to Kivo.\n");
  EXPECT_EQ(watch({"add", " +20 100* "}).status, 0);
  EXPECT_EQ(watch({"add", "بنك \"نيلو\" \\ '"}).status, 0);
  EXPECT_EQ(watch({"add", "MyBank"}).status, 0);
  EXPECT_EQ(watch({"list"}).output, "MyBank\n+20 100*\nبنك \"نيلو\" \\ '\n");
}

TEST_F(NamingSenders, RemovesThemAgain) {
  watch({"add", "MyBank"});
  watch({"add", "Other"});
  EXPECT_EQ(watch({"remove", "MyBank"}).output,
            "Messages of \"MyBank\" are no longer handed to Kivo.\n");
  const ProgramResult again = watch({"remove", "MyBank"});
  EXPECT_EQ(again.status, 1);
  EXPECT_EQ(again.errors,
            "kivo-phone: there is no sender \"MyBank\"; kivo-phone watch list shows all\n");
  EXPECT_EQ(watch({"list"}).output, "Other\n");
}

TEST_F(NamingSenders, RefusesAnEmptySenderAndAStarAlone) {
  for (const char* const sender : {"", "  ", "*", " ** "}) {
    EXPECT_EQ(watch({"add", sender}).status, 64) << sender;
  }
  EXPECT_EQ(watch({"add"}).status, 64);
  EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(NamingSenders, CreatesAFileThatOnlyItsOwnerCanRead) {
  watch({"add", "MyBank"});
  struct stat found {};
  ASSERT_EQ(stat(file().c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777, 0600U);
  ASSERT_EQ(stat(file().parent_path().c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777, 0700U);
}

TEST_F(NamingSenders, KeepsAllThatAreAddedAtOnce) {
  constexpr std::string_view names = "abcdefghij";
  std::vector<std::unique_ptr<ChildProcess>> adding;
  for (const char name : names) {
    adding.push_back(std::make_unique<ChildProcess>(
        linux_platform::ProgramCall{.program = linux_platform::programFolder() / "kivo-phone",
                                    .arguments = {"watch", "add", std::string("Bank ") + name}}));
  }
  for (const auto& one : adding) EXPECT_EQ(one->wait().status, 0);
  const std::string listed = watch({"list"}).output;
  for (const char name : names) {
    EXPECT_THAT(listed, HasSubstr(std::string("Bank ") + name + "\n"));
  }
}

TEST_F(NamingSenders, RefusesAFileThatOtherUsersMayChange) {
  write("senders = ['MyBank']");
  std::filesystem::permissions(file(), std::filesystem::perms(0646));
  const ProgramResult result = watch({"list"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors,
            "kivo-phone: " + file().string() +
                ": other users may change it; take that right from them with chmod go-w\n");
}

TEST_F(NamingSenders, DoesNotOverwriteAFileThatCannotBeRead) {
  write("senders = [");
  for (const auto& arguments :
       std::vector<std::vector<std::string>>{{"add", "MyBank"}, {"remove", "MyBank"}, {"list"}}) {
    const ProgramResult result = watch(arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, StartsWith("kivo-phone: " + file().string() + ": line 1: "));
  }
  std::ifstream in(file());
  std::string line;
  std::getline(in, line);
  EXPECT_EQ(line, "senders = [");
}

TEST_F(NamingSenders, KeepsASymbolicLinkToTheFile) {
  const auto real = folders.home() / "elsewhere.toml";
  std::ofstream(real) << "senders = ['MyBank']\n";
  std::filesystem::create_directories(file().parent_path());
  std::filesystem::create_symlink(real, file());
  EXPECT_EQ(watch({"add", "Other"}).status, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(file()));
  EXPECT_EQ(watch({"list"}).output, "MyBank\nOther\n");
}

TEST_F(NamingSenders, ReportsThatTheFileCannotBeWritten) {
  std::ofstream(folders.home() / "config") << "in the way";
  const ProgramResult result = watch({"add", "MyBank"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "kivo-phone: the settings file cannot be written\n");
}

}  // namespace
}  // namespace kivo
