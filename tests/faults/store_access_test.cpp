// Access to the files of the real programs: file modes, and symbolic links in their place.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>

#include <sys/stat.h>

#include "testkit/extension_program.h"
#include "testkit/private_phone.h"
#include "testkit/raw_store.h"
#include "testkit/scripted_server.h"
#include "testkit/stored_bytes.h"

namespace kivo {
namespace {

namespace fs = std::filesystem;
using linux_platform::ChildProcess;
using linux_platform::ProgramCall;
using linux_platform::ProgramResult;
using testing::HasSubstr;

constexpr const char* refusal = "Failed to access app storage\n";

// The suffixes of the files of a suite.
constexpr const char* suffixes[] = {"", "-wal", "-shm", "-journal", "-unerased"};

unsigned modeOf(const fs::path& path) {
  struct stat found {};
  EXPECT_EQ(lstat(path.c_str(), &found), 0) << path;
  return found.st_mode & 07777U;
}

// Expects that the folder is 0700 and its `count` files are 0600.
void expectPrivate(const fs::path& folder, std::size_t count) {
  EXPECT_EQ(modeOf(folder), 0700U) << folder;
  std::size_t files = 0;
  for (const auto& entry : fs::directory_iterator(folder)) {
    EXPECT_EQ(modeOf(entry.path()), 0600U) << entry.path();
    ++files;
  }
  EXPECT_EQ(files, count);
}

class TheStoreOfARun : public testkit::ExtensionProgram {
 protected:
  [[nodiscard]] fs::path folder() const { return folders.storeFile().parent_path(); }
  [[nodiscard]] fs::path elsewhere() const { return folders.home() / "elsewhere"; }

  // A store outside the data folder, with modes that must not change.
  void moveStoreElsewhere() const {
    fs::create_directories(elsewhere().parent_path());
    fs::rename(folder(), elsewhere());
    fs::permissions(elsewhere(), fs::perms(0755));
    fs::permissions(elsewhere() / "defaults.sqlite3", fs::perms(0644));
  }
};

TEST_F(TheStoreOfARun, IsPrivateToItsOwnerUnderAnyUmask) {
  const testkit::ScriptedServer silent([](testkit::ServerConnection& self) { self.idle(); });
  int runs = 0;
  for (const char* const mask : {"000", "022", "077", "277", "777"}) {
    SCOPED_TRACE(mask);
    fs::remove_all(folders.dataHome());
    // Without a sign-in, this run creates the store and ends.
    const auto perform = [&] {
      return ProgramCall{.program = "sh",
                         .arguments = {"-c",
                                       std::string("umask ") + mask +
                                           "; exec \"$0\" perform ProcessSMSIntent --smsText -",
                                       call({}).program.string()},
                         .input = "Paid 150"};
    };
    EXPECT_THAT(linux_platform::runProgram(perform()).output, HasSubstr("sign in first"));
    expectPrivate(folder(), 3);
    signIn(silent.url());
    // Another program, the last to close the database, checkpoints and removes the WAL.
    testkit::RawStore(folders.storeFile()).run("SELECT count(*) FROM defaults");
    expectPrivate(folder(), 1);
    ChildProcess dying(perform());
    ASSERT_TRUE(silent.waitForConnections(++runs));
    dying.signal(SIGKILL);
    dying.wait();
    expectPrivate(folder(), 3);  // it left its log and the index of it behind
  }
}

TEST_F(TheStoreOfARun, IsRefusedWhenItsFolderIsASymbolicLink) {
  signIn();
  moveStoreElsewhere();
  const std::string before = testkit::bytesIn(elsewhere());
  fs::create_directory_symlink(elsewhere(), folder());
  const ProgramResult result = processSMS("Paid 150");
  EXPECT_EQ(result.output, refusal);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(testkit::bytesIn(elsewhere()), before);
  EXPECT_EQ(modeOf(elsewhere()), 0755U);
  EXPECT_EQ(modeOf(elsewhere() / "defaults.sqlite3"), 0644U);
  EXPECT_THAT(backend.requests(), testing::IsEmpty());
}

TEST_F(TheStoreOfARun, IsRefusedWhenAnyOfItsFilesIsASymbolicLink) {
  for (const char* const suffix : suffixes) {
    for (const bool dangling : {false, true}) {
      SCOPED_TRACE(std::string(suffix) + (dangling ? " to nowhere" : " to a file"));
      fs::remove_all(folder());
      fs::remove_all(elsewhere());
      fs::create_directories(elsewhere());
      signIn();
      if (!dangling) {
        std::ofstream(elsewhere() / "target") << "theirs";
        fs::permissions(elsewhere() / "target", fs::perms(0644));
      }
      fs::remove(folders.storeFile().string() + suffix);
      fs::create_symlink(elsewhere() / "target", folders.storeFile().string() + suffix);

      EXPECT_EQ(processSMS("Paid 150").output, refusal);
      EXPECT_EQ(testkit::bytesIn(elsewhere()), dangling ? "" : "theirs");
      EXPECT_EQ(fs::exists(elsewhere() / "target"), !dangling);
      if (!dangling) {
        EXPECT_EQ(modeOf(elsewhere() / "target"), 0644U);
      }
    }
  }
}

class TheStoreOfTheCenter : public testing::Test {
 protected:
  TheStoreOfTheCenter() { umask(0); }
  ~TheStoreOfTheCenter() override { umask(umaskBefore_); }

  static fs::path folder(testkit::PrivatePhone& phone) {
    return phone.folders().dataHome() / "app.kivo.NotificationCenter";
  }

 private:
  mode_t umaskBefore_ = umask(0);
};

TEST_F(TheStoreOfTheCenter, IsPrivateToItsOwnerUnderAnyUmask) {
  testkit::PrivatePhone phone;
  ASSERT_EQ(phone.callCenter("SetAuthorizationStatus", {"some.bundle", "2"}).status, 0);
  ASSERT_EQ(
      phone.callCenter("Add", {"some.bundle", "one", "{'title': <'T'>}", "60.0", "false"}).status,
      0);
  expectPrivate(folder(phone), 3);
  phone.killCenter();
  expectPrivate(folder(phone), 3);
}

TEST_F(TheStoreOfTheCenter, IsRefusedWhenItIsBehindASymbolicLink) {
  testkit::PrivatePhone phone;
  const fs::path elsewhere = phone.folders().home() / "elsewhere";
  for (const char* const suffix : suffixes) {
    SCOPED_TRACE(suffix);
    fs::remove_all(folder(phone));
    fs::create_directories(folder(phone));
    fs::create_directories(elsewhere);
    fs::create_symlink(elsewhere / "target",
                       (folder(phone) / "defaults.sqlite3").string() + suffix);
    const ProgramResult result = linux_platform::runProgram(
        {.program = linux_platform::programFolder() / "kivo-notification-center"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("kivo-notification-center: cannot open the store: " +
                                         folder(phone).string()));
    EXPECT_THAT(result.errors, HasSubstr("the stored notifications cannot be opened"));
    EXPECT_TRUE(fs::is_empty(elsewhere));
  }
}

}  // namespace
}  // namespace kivo
