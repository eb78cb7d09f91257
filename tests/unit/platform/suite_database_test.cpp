#include "platform/linux/store/suite_database.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/linux/foundation/device_folders.h"
#include "suite_test.h"

namespace kivo::platform {
namespace {

namespace fs = std::filesystem;
using linux_platform::dataHome;
using testkit::RawStore;
using testkit::ScopedVariable;

// The permissions of the file or folder at `path`, as in chmod.
unsigned modeOf(const fs::path& path) {
  struct stat found {};
  EXPECT_EQ(stat(path.c_str(), &found), 0) << path;
  return found.st_mode & 0777U;
}

std::string bytesOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void fill(const fs::path& file, std::string_view bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

class ASuiteFile : public SuiteTest {
 protected:
  // The database of some other program in the place of the suite.
  void leaveDatabase(const std::string& sql) const {
    fs::create_directories(folder());
    RawStore(file()).run(sql);
  }

  void expectRefusedAndUntouched() const {
    const std::string before = bytesOf(file());
    EXPECT_FALSE(tryToOpen().has_value());
    EXPECT_TRUE(bytesOf(file()) == before) << "the file was changed";
    EXPECT_FALSE(tryToOpen().has_value());
  }
};

using ADataHome = SuiteTest;

TEST_F(ASuiteFile, KeepsItsWalShortWhenEachHandleWritesOnce) {
  std::uintmax_t longest = 0;
  for (int number = 0; number < 400; ++number) {
    UserDefaults suite = open();
    suite.setObject("number", std::to_string(number));
    ASSERT_TRUE(suite.synchronize());
    longest = std::max(longest, fs::file_size(file().string() + "-wal"));
  }
  EXPECT_GT(longest, 200U << 10U);  // it is not moved after each commit
  EXPECT_LT(longest, 1U << 20U);
  EXPECT_EQ(RawStore(file()).run("SELECT value FROM defaults"), "399\n");
}

TEST_F(ASuiteFile, AcceptsWritesWhileAReaderBlocksTheCheckpoint) {
  std::optional<UserDefaults> suite = open();
  suite->setObject("number", "none");
  suite->synchronize();
  RawStore reader(file());
  reader.run("BEGIN; SELECT value FROM defaults");
  for (int number = 0; number < 300; ++number) {
    suite->setObject("number", std::to_string(number));
    ASSERT_TRUE(suite->synchronize());
  }
  EXPECT_EQ(reader.run("SELECT value FROM defaults"), "none\n");
  reader.run("COMMIT");
  suite->setObject("number", "300");
  suite->synchronize();
  suite.reset();
  EXPECT_LT(fs::file_size(file().string() + "-wal"), 64U << 10U);
  EXPECT_EQ(reader.run("SELECT value FROM defaults"), "300\n");
}

TEST_F(ASuiteFile, IsCreatedInTheDocumentedFormat) {
  { open(); }
  RawStore raw(file());
  EXPECT_EQ(raw.run("PRAGMA journal_mode"), "wal\n");
  EXPECT_EQ(raw.run("PRAGMA user_version"), "1\n");
  EXPECT_EQ(raw.run("PRAGMA application_id"), "1265202799\n");
  EXPECT_EQ(raw.run("SELECT sql FROM sqlite_schema WHERE type = 'table'"),
            "CREATE TABLE defaults (key TEXT PRIMARY KEY NOT NULL, value ANY NOT NULL) STRICT\n");
}

TEST_F(ASuiteFile, IsPrivateToItsOwnerUnderAnyUmask) {
  const mode_t before = umask(0);
  UserDefaults suite = open();
  suite.setObject("key", "value");
  suite.synchronize();
  umask(before);
  EXPECT_EQ(modeOf(folder()), 0700U);
  EXPECT_EQ(modeOf(file()), 0600U);
  EXPECT_EQ(modeOf(file().string() + "-wal"), 0600U);
  EXPECT_EQ(modeOf(file().string() + "-shm"), 0600U);
}

TEST_F(ASuiteFile, RemovesPermissionsOfOthersFromAnOlderFile) {
  UserDefaults early = open();  // keeps the files beside the database alive
  early.setObject("key", "value");
  early.synchronize();
  fs::permissions(folder(), fs::perms(0755));
  for (const char* suffix : {"", "-wal", "-shm"}) {
    fs::permissions(file().string() + suffix, fs::perms(0644));
  }
  open();
  EXPECT_EQ(modeOf(folder()), 0700U);
  for (const char* suffix : {"", "-wal", "-shm"}) {
    EXPECT_EQ(modeOf(file().string() + suffix), 0600U) << suffix;
  }
}

TEST_F(ASuiteFile, NeedsANameWithoutPathSeparators) {
  for (const std::string_view name : {"", ".", "..", "a/b", "../x"}) {
    EXPECT_FALSE(UserDefaults::initWithSuiteName(name).has_value()) << name;
  }
  EXPECT_FALSE(UserDefaults::initWithSuiteName(std::string_view("a\0b", 3)).has_value());
}

TEST_F(ASuiteFile, BecomesANewSuiteWhenEmpty) {
  fs::create_directories(folder());
  fill(file(), "");
  UserDefaults suite = open();
  suite.setObject("key", "value");
  EXPECT_TRUE(suite.synchronize());
  EXPECT_EQ(open().stringForKey("key"), "value");
}

TEST_F(ASuiteFile, BecomesANewSuiteWhenItsCreatorDied) {
  leaveDatabase("PRAGMA journal_mode = WAL");
  EXPECT_GT(fs::file_size(file()), 0U);
  { open(); }
  EXPECT_EQ(RawStore(file()).run("PRAGMA user_version"), "1\n");
}

TEST_F(ASuiteFile, IsSwitchedBackToWalMode) {
  leaveBehind("('key', 'value')");
  EXPECT_EQ(RawStore(file()).run("PRAGMA journal_mode = DELETE"), "delete\n");
  EXPECT_EQ(open().stringForKey("key"), "value");
  EXPECT_EQ(RawStore(file()).run("PRAGMA journal_mode"), "wal\n");
}

TEST_F(ASuiteFile, IsRefusedWhenItIsNotADatabase) {
  fs::create_directories(folder());
  for (const std::string& bytes : {std::string("x"), std::string("not a database\n"),
                                   std::string(8192, '\0'), std::string(8192, '\xff')}) {
    fill(file(), bytes);
    expectRefusedAndUntouched();
  }
}

TEST_F(ASuiteFile, IsRefusedWithANewerVersion) {
  { open(); }
  RawStore(file()).run("PRAGMA user_version = 2");
  expectRefusedAndUntouched();
}

TEST_F(ASuiteFile, IsRefusedWithAnotherApplicationId) {
  leaveDatabase("CREATE TABLE theirs (x); PRAGMA application_id = 7; PRAGMA user_version = 1");
  expectRefusedAndUntouched();
}

TEST_F(ASuiteFile, IsRefusedWithoutAnApplicationId) {
  leaveDatabase("CREATE TABLE defaults (key, value)");
  expectRefusedAndUntouched();
}

TEST_F(ASuiteFile, IsRefusedWhenEmptyButVersioned) {
  leaveDatabase("PRAGMA user_version = 3");
  expectRefusedAndUntouched();
}

TEST_F(ASuiteFile, IsRefusedWithoutItsTable) {
  { open(); }
  RawStore(file()).run("DROP TABLE defaults");
  EXPECT_FALSE(tryToOpen().has_value());
}

TEST_F(ASuiteFile, IsRefusedWhenItIsAFolder) {
  fs::create_directories(file());
  EXPECT_FALSE(tryToOpen().has_value());
}

TEST_F(ASuiteFile, IsRefusedAtOnceWhenItIsAPipe) {
  fs::create_directories(folder());
  ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
  EXPECT_FALSE(tryToOpen().has_value());
}

TEST_F(ASuiteFile, ReadsAsEmptyAndReportsFailedWritesWhenDamaged) {
  leaveBehind("('key', hex(randomblob(20000)))");
  std::string bytes = bytesOf(file());
  std::fill(bytes.begin() + 4096, bytes.end(), '\x5a');
  fill(file(), bytes);

  UserDefaults suite = open();
  EXPECT_EQ(suite.stringForKey("key"), std::nullopt);
  EXPECT_EQ(suite.doubleForKey("key"), 0);
  EXPECT_TRUE(suite.dictionaryRepresentation().empty());
  suite.setObject("key", "value");
  testing::internal::CaptureStderr();
  EXPECT_FALSE(suite.synchronize());
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "the shared store could not be written: database disk image is malformed\n");
}

TEST_F(ASuiteFile, NeverEndsTheProcessWhenDamaged) {
  leaveBehind("('key', hex(randomblob(3000))), ('other', 'value'), ('third', 1.5)");
  const std::string intact = bytesOf(file());
  std::mt19937 random(20260131);
  int refused = 0;
  testing::internal::CaptureStderr();
  for (int round = 0; round < 100; ++round) {
    std::string bytes = intact;
    for (int change = 0; change < 8; ++change) {
      bytes[random() % bytes.size()] = static_cast<char>(random() % 256);
    }
    if (round % 4 == 0) bytes.resize(random() % bytes.size());
    for (const char* suffix : {"-wal", "-shm"}) fs::remove(file().string() + suffix);
    fill(file(), bytes);

    auto suite = tryToOpen();
    if (!suite) {
      ++refused;
      continue;
    }
    EXPECT_LE(suite->dictionaryRepresentation().size(), intact.size());
    EXPECT_LE(suite->stringForKey("key").value_or("").size(), intact.size());
    suite->setDouble("third", suite->doubleForKey("third") + 1);
    suite->synchronize();
  }
  testing::internal::GetCapturedStderr();
  EXPECT_GT(refused, 0);
  EXPECT_LT(refused, 100);
}

TEST_F(ADataHome, IsRefusedWhenItIsAFile) {
  fill(folders_.dataHome(), "");
  EXPECT_FALSE(tryToOpen().has_value());
}

TEST_F(ADataHome, IsRefusedWhenTheFolderOfTheSuiteIsAFile) {
  fs::create_directories(folders_.dataHome());
  fill(folder(), "");
  EXPECT_FALSE(tryToOpen().has_value());
}

TEST_F(ADataHome, IsCreatedWithItsParents) {
  const ScopedVariable variable("XDG_DATA_HOME", (folders_.home() / "a" / "b" / "c").string());
  EXPECT_TRUE(tryToOpen().has_value());
  EXPECT_TRUE(fs::exists(folders_.home() / "a" / "b" / "c" / "group.app.kivo.expenses" /
                         "defaults.sqlite3"));
}

TEST_F(ADataHome, IsTheValueOfXdgDataHome) { EXPECT_EQ(dataHome(), folders_.dataHome()); }

TEST_F(ADataHome, IsInTheHomeWithoutXdgDataHome) {
  const fs::path inHome = folders_.home() / ".local" / "share";
  for (const auto& value : {std::optional<std::string>(), std::optional<std::string>(""),
                            std::optional<std::string>("relative/folder")}) {
    const ScopedVariable variable("XDG_DATA_HOME", value);
    EXPECT_EQ(dataHome(), inHome);
  }
}

TEST_F(ADataHome, IsAbsentWithoutAHome) {
  const ScopedVariable variable("XDG_DATA_HOME", std::nullopt);
  for (const auto& value : {std::optional<std::string>(), std::optional<std::string>(""),
                            std::optional<std::string>("relative")}) {
    const ScopedVariable home("HOME", value);
    EXPECT_EQ(dataHome(), std::nullopt);
    EXPECT_FALSE(tryToOpen().has_value());
  }
}

TEST_F(ADataHome, NeedsNoHomeWithXdgDataHome) {
  const ScopedVariable home("HOME", std::nullopt);
  EXPECT_TRUE(tryToOpen().has_value());
}

}  // namespace
}  // namespace kivo::platform
