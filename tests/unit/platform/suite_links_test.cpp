// Symbolic links and foreign files in place of the files of a suite.
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "suite_test.h"
#include "testkit/stored_bytes.h"

namespace kivo::platform {
namespace {

namespace fs = std::filesystem;

class ASymbolicLink : public SuiteTest {
 protected:
  ASymbolicLink() { fs::create_directories(elsewhere()); }

  [[nodiscard]] fs::path elsewhere() const { return folders_.home() / "elsewhere"; }

  // An intact suite, of which a part can be moved away.
  void leaveSuite() const { leaveBehind("('key', 'value')"); }

  // A foreign file, with a mode that must not change, and a link to it at `place`.
  void linkToFileFrom(const fs::path& place) const {
    std::ofstream(elsewhere() / "target") << "theirs";
    fs::permissions(elsewhere() / "target", fs::perms(0644));
    fs::create_symlink(elsewhere() / "target", place);
  }

  void expectRefusedAndTargetUntouched() const {
    EXPECT_FALSE(tryToOpen().has_value());
    EXPECT_EQ(testkit::bytesIn(elsewhere()), "theirs");
    EXPECT_EQ(fs::status(elsewhere() / "target").permissions(), fs::perms(0644));
  }
};

TEST_F(ASymbolicLink, IsRefusedAsTheFolder) {
  leaveSuite();
  fs::rename(folder(), elsewhere() / "moved");
  fs::permissions(elsewhere() / "moved", fs::perms(0755));
  fs::create_directory_symlink(elsewhere() / "moved", folder());
  const std::string before = testkit::bytesIn(elsewhere() / "moved");
  EXPECT_FALSE(tryToOpen().has_value());
  EXPECT_EQ(testkit::bytesIn(elsewhere() / "moved"), before);
  EXPECT_EQ(fs::status(elsewhere() / "moved").permissions(), fs::perms(0755));
}

TEST_F(ASymbolicLink, IsRefusedAsTheFolderWhenDangling) {
  fs::create_directories(folders_.dataHome());
  fs::create_directory_symlink(elsewhere() / "nothing", folder());
  EXPECT_FALSE(tryToOpen().has_value());
  EXPECT_TRUE(fs::is_empty(elsewhere()));
}

TEST_F(ASymbolicLink, IsRefusedAsTheDatabaseFile) {
  leaveSuite();
  fs::rename(file(), elsewhere() / "moved");
  fs::create_symlink(elsewhere() / "moved", file());
  const std::string before = testkit::bytesIn(elsewhere());
  EXPECT_FALSE(tryToOpen().has_value());
  EXPECT_EQ(testkit::bytesIn(elsewhere()), before);
  EXPECT_FALSE(fs::exists(elsewhere() / "moved-wal"));
}

TEST_F(ASymbolicLink, IsRefusedAsAnyFileWhenItPointsToAForeignFile) {
  for (const char* const suffix : {"", "-wal", "-shm", "-journal", "-unerased"}) {
    SCOPED_TRACE(suffix);
    fs::remove_all(folder());
    leaveSuite();
    fs::remove(file().string() + suffix);
    linkToFileFrom(file().string() + suffix);
    expectRefusedAndTargetUntouched();
  }
}

TEST_F(ASymbolicLink, IsRefusedAsAnyFileWhenDangling) {
  for (const char* const suffix : {"", "-wal", "-shm", "-journal", "-unerased"}) {
    SCOPED_TRACE(suffix);
    fs::remove_all(folder());
    leaveSuite();
    fs::remove(file().string() + suffix);
    fs::create_symlink(elsewhere() / "nothing", file().string() + suffix);
    EXPECT_FALSE(tryToOpen().has_value());
    EXPECT_TRUE(fs::is_empty(elsewhere()));
  }
}

TEST_F(ASymbolicLink, IsFollowedInThePathOfTheDataHome) {
  fs::create_directory_symlink(elsewhere(), folders_.dataHome());
  EXPECT_TRUE(tryToOpen().has_value());
  EXPECT_TRUE(fs::exists(elsewhere() / folder().filename() / file().filename()));
}

using AFolderOfAnotherUser = ASymbolicLink;

TEST_F(AFolderOfAnotherUser, IsRefused) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
  leaveSuite();
  ASSERT_EQ(chown(folder().c_str(), 65534, 65534), 0);
  EXPECT_FALSE(tryToOpen().has_value());
}

}  // namespace
}  // namespace kivo::platform
