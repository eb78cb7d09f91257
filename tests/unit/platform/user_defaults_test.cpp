#include "platform/foundation/user_defaults.h"

#include <cmath>
#include <fstream>
#include <iterator>
#include <random>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/linux/foundation/device_folders.h"
#include "testkit/private_folders.h"
#include "testkit/raw_store.h"

namespace kivo::platform {
namespace {

namespace fs = std::filesystem;
using linux_platform::dataHome;
using testkit::RawStore;
using testkit::ScopedVariable;

constexpr std::string_view suiteName = "group.app.kivo.expenses";

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

class UserDefaultsTest : public testing::Test {
 protected:
  [[nodiscard]] fs::path file() const { return folders_.storeFile(); }
  [[nodiscard]] fs::path folder() const { return file().parent_path(); }

  static std::optional<UserDefaults> tryToOpen() {
    return UserDefaults::initWithSuiteName(suiteName);
  }
  static UserDefaults open() {
    auto suite = tryToOpen();
    if (!suite) throw std::runtime_error("the suite does not open");
    return std::move(*suite);
  }

  // A suite with `values`, as SQL's list of rows, that some program has left behind.
  void leaveBehind(const std::string& values) const {
    open();
    RawStore(file()).run("INSERT INTO defaults VALUES " + values);
  }

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

  testkit::PrivateFolders folders_;
};

using ASuite = UserDefaultsTest;
using ASuiteFile = UserDefaultsTest;
using ADataHome = UserDefaultsTest;

TEST_F(ASuite, ReadsAKeyThatWasNeverWrittenAsNoneAndZero) {
  const UserDefaults suite = open();
  EXPECT_EQ(suite.stringForKey("userId"), std::nullopt);
  EXPECT_EQ(suite.doubleForKey("smsQueueDrainLock"), 0.0);
  EXPECT_TRUE(suite.dictionaryRepresentation().empty());
}

TEST_F(ASuite, GivesItsTextsAndNumbersToTheNextRun) {
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

TEST_F(ASuite, ReadsItsOwnWritesBeforeTheyAreSynchronized) {
  UserDefaults suite = open();
  suite.setObject("todayCount", "1");
  suite.setDouble("smsQueueDrainLock", 5);
  EXPECT_EQ(suite.stringForKey("todayCount"), "1");
  EXPECT_EQ(suite.doubleForKey("smsQueueDrainLock"), 5);
  EXPECT_EQ(suite.dictionaryRepresentation().size(), 2U);
}

TEST_F(ASuite, ShowsItsWritesToAnotherHandleOnlyWhenTheyAreSynchronized) {
  UserDefaults writer = open();
  const UserDefaults reader = open();
  writer.setObject("pendingSmsQueue", "[]");
  EXPECT_EQ(reader.stringForKey("pendingSmsQueue"), std::nullopt);
  writer.synchronize();
  EXPECT_EQ(reader.stringForKey("pendingSmsQueue"), "[]");
}

TEST_F(ASuite, CachesNothingBetweenReads) {
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

TEST_F(ASuite, DropsWithTheHandleWhatWasNotSynchronized) {
  { open().setObject("currency", "EGP"); }
  EXPECT_EQ(open().stringForKey("currency"), std::nullopt);
}

TEST_F(ASuite, KeepsAKeyThatHoldsAnEmptyState) {
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

TEST_F(ASuite, ReadsAnythingButATextAsNoText) {
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

TEST_F(ASuite, RepairsATextOfItsOwnAsItWillBeReadLater) {
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

TEST_F(ASuite, KeepsEveryDoubleThatIsANumber) {
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

TEST_F(ASuite, MovesWithItsPendingWrites) {
  UserDefaults first = open();
  first.setObject("key", "value");
  UserDefaults second = std::move(first);
  EXPECT_TRUE(second.synchronize());
  EXPECT_EQ(open().stringForKey("key"), "value");
}

TEST_F(ASuite, SaysInOneLineWithoutAnyValueThatAWriteFailed) {
  UserDefaults suite = open();
  suite.setObject("secretKey", "secretText");
  suite.setDouble("notANumber", std::nan(""));
  testing::internal::CaptureStderr();
  EXPECT_FALSE(suite.synchronize());
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "the shared store could not be written: constraint failed\n");
}

TEST_F(ASuite, CommitsAWriteGroupAsAWholeOrNotAtAll) {
  UserDefaults suite = open();
  suite.setObject("a", "1");
  suite.setDouble("b", std::nan(""));
  suite.setObject("c", "3");
  testing::internal::CaptureStderr();
  EXPECT_FALSE(suite.synchronize());
  testing::internal::GetCapturedStderr();
  EXPECT_TRUE(open().dictionaryRepresentation().empty());
}

TEST_F(ASuite, GoesOnAfterAFailedWriteWithoutTheLostValues) {
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

TEST_F(ASuite, TouchesNoFileWhenThereIsNothingToSynchronize) {
  UserDefaults suite = open();
  RawStore writer(file());
  writer.run("BEGIN IMMEDIATE");  // a commit would have to wait for it
  EXPECT_TRUE(suite.synchronize());
}

TEST_F(ASuite, IsMadeInTheDocumentedForm) {
  { open(); }
  RawStore raw(file());
  EXPECT_EQ(raw.run("PRAGMA journal_mode"), "wal\n");
  EXPECT_EQ(raw.run("PRAGMA user_version"), "1\n");
  EXPECT_EQ(raw.run("PRAGMA application_id"), "1265202799\n");
  EXPECT_EQ(raw.run("SELECT sql FROM sqlite_schema WHERE type = 'table'"),
            "CREATE TABLE defaults (key TEXT PRIMARY KEY NOT NULL, value ANY NOT NULL) STRICT\n");
}

TEST_F(ASuite, IsForItsOwnerOnlyWhateverTheUmask) {
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

TEST_F(ASuite, TakesFromOthersWhatTheyMightDoWithAnOlderFolderOrFile) {
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

TEST_F(ASuite, HasANameThatIsOneFolder) {
  for (const std::string_view name : {"", ".", "..", "a/b", "../x"}) {
    EXPECT_FALSE(UserDefaults::initWithSuiteName(name).has_value()) << name;
  }
  EXPECT_FALSE(UserDefaults::initWithSuiteName(std::string_view("a\0b", 3)).has_value());
}

TEST_F(ASuiteFile, ThatIsEmptyIsANewSuite) {
  fs::create_directories(folder());
  fill(file(), "");
  UserDefaults suite = open();
  suite.setObject("key", "value");
  EXPECT_TRUE(suite.synchronize());
  EXPECT_EQ(open().stringForKey("key"), "value");
}

TEST_F(ASuiteFile, WhoseMakerDiedBeforeFillingItIsANewSuite) {
  leaveDatabase("PRAGMA journal_mode = WAL");
  EXPECT_GT(fs::file_size(file()), 0U);
  { open(); }
  EXPECT_EQ(RawStore(file()).run("PRAGMA user_version"), "1\n");
}

TEST_F(ASuiteFile, ThatLeftTheWalModeIsBroughtBackToIt) {
  leaveBehind("('key', 'value')");
  EXPECT_EQ(RawStore(file()).run("PRAGMA journal_mode = DELETE"), "delete\n");
  EXPECT_EQ(open().stringForKey("key"), "value");
  EXPECT_EQ(RawStore(file()).run("PRAGMA journal_mode"), "wal\n");
}

TEST_F(ASuiteFile, ThatIsNoDatabaseIsRefused) {
  fs::create_directories(folder());
  for (const std::string& bytes : {std::string("x"), std::string("not a database\n"),
                                   std::string(8192, '\0'), std::string(8192, '\xff')}) {
    fill(file(), bytes);
    expectRefusedAndUntouched();
  }
}

TEST_F(ASuiteFile, ThatIsNewerIsRefused) {
  { open(); }
  RawStore(file()).run("PRAGMA user_version = 2");
  expectRefusedAndUntouched();
}

TEST_F(ASuiteFile, OfAnotherProgramIsRefused) {
  leaveDatabase("CREATE TABLE theirs (x); PRAGMA application_id = 7; PRAGMA user_version = 1");
  expectRefusedAndUntouched();
}

TEST_F(ASuiteFile, OfAProgramWithoutANameIsRefused) {
  leaveDatabase("CREATE TABLE defaults (key, value)");
  expectRefusedAndUntouched();
}

TEST_F(ASuiteFile, OfAnEmptyDatabaseWithAVersionIsRefused) {
  leaveDatabase("PRAGMA user_version = 3");
  expectRefusedAndUntouched();
}

TEST_F(ASuiteFile, WithoutItsTableIsRefused) {
  { open(); }
  RawStore(file()).run("DROP TABLE defaults");
  EXPECT_FALSE(tryToOpen().has_value());
}

TEST_F(ASuiteFile, ThatIsAFolderIsRefused) {
  fs::create_directories(file());
  EXPECT_FALSE(tryToOpen().has_value());
}

TEST_F(ASuiteFile, ThatIsAPipeIsRefusedAtOnce) {
  fs::create_directories(folder());
  ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
  EXPECT_FALSE(tryToOpen().has_value());
}

TEST_F(ASuiteFile, ThatIsDamagedInsideReadsAsEmptyAndSaysThatWritesFail) {
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

TEST_F(ASuiteFile, WithAnyDamageNeverStopsTheProcess) {
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

TEST_F(ADataHome, ThatIsAFileHoldsNoSuite) {
  fill(folders_.dataHome(), "");
  EXPECT_FALSE(tryToOpen().has_value());
}

TEST_F(ADataHome, WithAFileInThePlaceOfTheFolderHoldsNoSuite) {
  fs::create_directories(folders_.dataHome());
  fill(folder(), "");
  EXPECT_FALSE(tryToOpen().has_value());
}

TEST_F(ADataHome, IsMadeWithAllItsParents) {
  const ScopedVariable variable("XDG_DATA_HOME", (folders_.home() / "a" / "b" / "c").string());
  EXPECT_TRUE(tryToOpen().has_value());
  EXPECT_TRUE(fs::exists(folders_.home() / "a" / "b" / "c" / suiteName / "defaults.sqlite3"));
}

TEST_F(ADataHome, IsTheVariable) { EXPECT_EQ(dataHome(), folders_.dataHome()); }

TEST_F(ADataHome, IsInTheHomeWithoutAUsableVariable) {
  const fs::path inHome = folders_.home() / ".local" / "share";
  for (const auto& value : {std::optional<std::string>(), std::optional<std::string>(""),
                            std::optional<std::string>("relative/folder")}) {
    const ScopedVariable variable("XDG_DATA_HOME", value);
    EXPECT_EQ(dataHome(), inHome);
  }
}

TEST_F(ADataHome, IsNowhereWithoutAHome) {
  const ScopedVariable variable("XDG_DATA_HOME", std::nullopt);
  for (const auto& value : {std::optional<std::string>(), std::optional<std::string>(""),
                            std::optional<std::string>("relative")}) {
    const ScopedVariable home("HOME", value);
    EXPECT_EQ(dataHome(), std::nullopt);
    EXPECT_FALSE(tryToOpen().has_value());
  }
}

TEST_F(ADataHome, NeedsNoHomeWhenTheVariableNamesIt) {
  const ScopedVariable home("HOME", std::nullopt);
  EXPECT_TRUE(tryToOpen().has_value());
}

}  // namespace
}  // namespace kivo::platform
