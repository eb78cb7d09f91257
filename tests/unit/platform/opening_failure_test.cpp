// The reason that is printed for a suite that cannot be opened.
#include "platform/linux/store/opening_failure.h"

#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include "suite_test.h"

namespace kivo::platform {
namespace {

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::HasSubstr;
using testkit::RawStore;
using testkit::ScopedVariable;

class ASuiteThatDoesNotOpen : public SuiteTest {
 protected:
  // Returns the output of an attempt to open it on standard error.
  static std::string said() {
    testing::internal::CaptureStderr();
    EXPECT_FALSE(tryToOpen().has_value());
    return testing::internal::GetCapturedStderr();
  }

  static std::string line(const fs::path& place, const std::string& what) {
    return std::string(program_invocation_short_name) +
           ": cannot open the store: " + place.string() + what + "\n";
  }

  void leaveBytes(std::string_view bytes) const {
    fs::create_directories(folder());
    std::ofstream(file(), std::ios::binary) << bytes;
  }

  static constexpr const char* startOver = "; move it away to start with an empty store";
};

TEST_F(ASuiteThatDoesNotOpen, NamesTheFolderThatIsASymbolicLink) {
  fs::create_directories(folders_.dataHome());
  fs::create_directory_symlink(folders_.home(), folder());
  EXPECT_EQ(
      said(),
      line(
          folder(),
          " is a symbolic link, which is not followed; replace it with the file or folder itself"));
}

TEST_F(ASuiteThatDoesNotOpen, NamesTheFileThatIsASymbolicLink) {
  for (const char* const suffix : {"", "-wal", "-unerased"}) {
    { open(); }
    const fs::path place = file().string() + suffix;
    fs::remove(place);
    fs::create_symlink("nothing", place);
    EXPECT_THAT(said(), HasSubstr(place.string() + " is a symbolic link"));
    fs::remove_all(folder());
  }
}

TEST_F(ASuiteThatDoesNotOpen, NamesTheFileInPlaceOfTheFolder) {
  fs::create_directories(folders_.dataHome());
  std::ofstream(folder()) << "a file";
  EXPECT_EQ(said(), line(folder(), std::string(" is not a folder") + startOver));
}

TEST_F(ASuiteThatDoesNotOpen, NamesTheFileThatIsNotRegular) {
  fs::create_directories(file());
  EXPECT_EQ(said(), line(file(), std::string(" is not a regular file") + startOver));
}

TEST_F(ASuiteThatDoesNotOpen, NamesTheFolderOfAnotherUser) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
  { open(); }
  ASSERT_EQ(chown(folder().c_str(), 65534, 65534), 0);
  EXPECT_EQ(said(), line(folder(), std::string(" belongs to another user") + startOver));
}

TEST_F(ASuiteThatDoesNotOpen, NamesTheNewerVersion) {
  { open(); }
  RawStore(file()).run("PRAGMA user_version = 2");
  EXPECT_EQ(said(),
            line(file(), " was written by a newer version of Kivo (file format 2); update Kivo"));
}

TEST_F(ASuiteThatDoesNotOpen, NamesTheDatabaseOfAnotherProgram) {
  fs::create_directories(folder());
  RawStore(file()).run("CREATE TABLE theirs (x); PRAGMA application_id = 7");
  EXPECT_EQ(said(), line(file(), std::string(" is a database of another program") + startOver));
}

TEST_F(ASuiteThatDoesNotOpen, NamesTheFileThatIsNotADatabase) {
  for (const char* const bytes : {"x", "not a database, though it is long enough to be one\n"}) {
    leaveBytes(bytes);
    EXPECT_EQ(said(), line(file(), std::string(" is not a database") + startOver));
    linux_platform::tellOpened();  // so that the next failure is said again
  }
}

TEST_F(ASuiteThatDoesNotOpen, NamesTheDamagedFile) {
  { open(); }
  RawStore(file()).run("DROP TABLE defaults");
  EXPECT_EQ(
      said(),
      line(file(), " is damaged; restore a copy, or move it away to start with an empty store"));
}

TEST_F(ASuiteThatDoesNotOpen, ReportsThatThereIsNoHome) {
  const ScopedVariable data("XDG_DATA_HOME", std::nullopt);
  for (const auto& home : {std::optional<std::string>(), std::optional<std::string>("relative")}) {
    const ScopedVariable variable("HOME", home);
    linux_platform::tellOpened();
    EXPECT_EQ(said(), line("", "neither XDG_DATA_HOME nor HOME is an absolute path; set HOME"));
  }
}

TEST_F(ASuiteThatDoesNotOpen, ReportsWhyAFolderCannotBeCreated) {
  const ScopedVariable data("XDG_DATA_HOME", "/proc/kivo/data");
  EXPECT_EQ(said(), line("/proc/kivo/data", " cannot be created: No such file or directory"));
}

TEST_F(ASuiteThatDoesNotOpen, ReportsAFolderBelowAFile) {
  fs::create_directories(folders_.home());
  std::ofstream(folders_.dataHome()) << "a file";
  EXPECT_EQ(said(), line(folder(), " cannot be created: Not a directory"));
}

TEST_F(ASuiteThatDoesNotOpen, ReportsAMissingPermission) {
  { open(); }
  const fs::path locked = folders_.dataHome() / "locked";
  fs::create_directories(locked);
  fs::permissions(locked, fs::perms(0));
  const ScopedVariable data("XDG_DATA_HOME", (locked / "data").string());
  const uid_t before = geteuid();
  if (before == 0) {
    ASSERT_EQ(seteuid(65534), 0);
  }
  const std::string words = said();
  ASSERT_EQ(seteuid(before), 0);
  EXPECT_THAT(
      words,
      EndsWith(": Permission denied; change its permissions so that you can read and write it\n"));
  EXPECT_THAT(words, HasSubstr((locked / "data").string()));
}

TEST_F(ASuiteThatDoesNotOpen, RepeatsAReasonOnlyAfterItOpenedAgain) {
  leaveBytes("not a database, though it is long enough to be one\n");
  EXPECT_NE(said(), "");
  EXPECT_EQ(said(), "");
  fs::remove(file());
  EXPECT_TRUE(tryToOpen().has_value());
  fs::remove_all(folder());
  leaveBytes("not a database, though it is long enough to be one\n");
  EXPECT_NE(said(), "");
}

TEST_F(ASuiteThatDoesNotOpen, ReportsItsReasonInOneLine) {
  const ScopedVariable data("XDG_DATA_HOME", "/proc/a\nb\x1b[2J");
  EXPECT_EQ(said(), line("/proc/a\\nb\\x1b[2J", " cannot be created: No such file or directory"));
}

TEST(AnOpeningFailure, DistinguishesALockedDatabaseFromADamagedOne) {
  using linux_platform::OpeningFailure;
  EXPECT_STREQ(OpeningFailure::ofDatabase("/x", SQLITE_BUSY_RECOVERY, 0).what(),
               "cannot open the store: /x is locked by another program; stop it and try again");
  EXPECT_STREQ(OpeningFailure::ofDatabase("/x", SQLITE_CORRUPT, 0).what(),
               OpeningFailure::isDamaged("/x").what());
  EXPECT_STREQ(OpeningFailure::ofDatabase("/x", SQLITE_CANTOPEN, ENOSPC).what(),
               "cannot open the store: /x cannot be opened: No space left on device");
  EXPECT_STREQ(OpeningFailure::ofDatabase("/x", SQLITE_NOMEM, 0).what(),
               "cannot open the store: /x cannot be opened: out of memory");
}

}  // namespace
}  // namespace kivo::platform
