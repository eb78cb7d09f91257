// `kivo-ledger backup` and `restore`, beside a running service.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "book/current_day.h"
#include "platform/linux/process/child_process.h"
#include "testkit/private_ledger.h"
#include "testkit/raw_store.h"
#include "testkit/stored_bytes.h"

// The merchants below do not exist.

namespace kivo::testkit {
namespace {

namespace fs = std::filesystem;
using linux_platform::ProgramResult;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

class ABackup : public testing::Test {
 protected:
  static constexpr const char* templates =
      "# mine\n[[template]]\ntext = \"Zap {amount} to {payee} now.\"\nkind = \"expense\"\n";
  static constexpr const char* senders = "# my bank\nsenders = [\"MyBank\"]\n";

  static ProgramResult run(std::vector<std::string> arguments) {
    return linux_platform::runProgram({.program = linux_platform::programFolder() / "kivo-ledger",
                                       .arguments = std::move(arguments)});
  }
  // The output of a command that has to succeed.
  static std::string shown(std::vector<std::string> arguments) {
    const ProgramResult result = run(std::move(arguments));
    EXPECT_EQ(result.status, 0) << result.errors;
    return result.output;
  }
  static void useCurrency(const std::string& currency) {
    linux_platform::runProgram({.program = linux_platform::programFolder() / "kivo-phone",
                                .arguments = {"store", "set", "currency", currency}});
  }
  // All that a person can see of the book.
  static std::string seen() {
    std::string all;
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"list", "--json"},
                                               {"review", "--json"},
                                               {"ignored", "--json"},
                                               {"summary", "--month", "2026-11", "--json"},
                                               {"rate"},
                                               {"show", "1"},
                                               {"export", "--format", "csv"},
                                               {"export", "--format", "hledger"},
                                               {"export", "--format", "beancount"},
                                               {"export", "--format", "ofx"}}) {
      all += shown(command) + "\n";
    }
    return all;
  }
  static void write(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
  }
  static std::string bytesOf(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  [[nodiscard]] fs::path home() const { return ledger_.folders().home(); }
  [[nodiscard]] std::string file() const { return home() / "book.kivo"; }
  [[nodiscard]] fs::path folder() const { return ledger_.folders().dataHome() / "kivo-backups"; }
  [[nodiscard]] fs::path settings() const {
    const char* const config = std::getenv("XDG_CONFIG_HOME");
    return fs::path(config == nullptr ? home() / ".config" : fs::path(config)) / "kivo";
  }
  // A book with all kinds of things, and its settings. The currency is not the usual one.
  void fill() {
    useCurrency("USD");
    write(settings() / "templates.toml", templates);
    write(settings() / "sms-watcher.toml", senders);
    fs::permissions(settings() / "templates.toml", fs::perms(0600));
    fs::permissions(settings() / "sms-watcher.toml", fs::perms(0600));
    ledger_.post("KEY-1", "Your card was charged USD 150.00 at Carrefour City.");
    ledger_.post("KEY-2", "Your card was charged EUR 20.00 at Nile Cinema.");
    ledger_.post("KEY-3", "Zap 12.50 to Nile Cinema now.");
    ledger_.post("KEY-4", "USD 99.00 will be debited for StreamNest.", book::currentDay().text());
    shown({"rate", "EUR", "1.1"});
    shown({"edit", "1", "--category", "Gifts"});
    shown({"add", "--amount", "7", "--payee", "Kiosk", "--date", "2026-11-02"});
  }
  // The folders of a person who has nothing yet, inside the home.
  struct NewPerson {
    explicit NewPerson(const fs::path& home)
        : data("XDG_DATA_HOME", home / "new/data"),
          config("XDG_CONFIG_HOME", home / "new/config"),
          state("XDG_STATE_HOME", home / "new/state") {}
    ScopedVariable data;
    ScopedVariable config;
    ScopedVariable state;
  };
  // The last line of the service, which ends.
  static void end(linux_platform::ChildProcess& server) {
    server.signal(SIGTERM);
    EXPECT_EQ(server.wait().status, 0);
  }

  PrivateLedger ledger_;
};

TEST_F(ABackup, BringsTheSameBookAndSettingsToAnotherPerson) {
  const auto server = ledger_.start();
  fill();
  const std::string before = seen();
  EXPECT_EQ(shown({"backup", file()}),
            "Backed up 4 payments, from 2026-11-02 to 2026-11-21, into " + file() + "\n");
  end(*server);
  const NewPerson person(home());
  EXPECT_EQ(shown({"restore", file()}), "Restored 4 payments, from 2026-11-02 to 2026-11-21.\n");
  EXPECT_EQ(seen(), before);
  EXPECT_THAT(before, HasSubstr("USD"));
  EXPECT_EQ(bytesOf(settings() / "templates.toml"), templates);
  EXPECT_EQ(bytesOf(settings() / "sms-watcher.toml"), senders);
  EXPECT_FALSE(fs::exists(home() / "new/data/kivo-backups"));
}

TEST_F(ABackup, LeavesNothingBesideIt) {
  shown({"add", "--amount", "7", "--payee", "Kiosk"});
  fs::create_directory(home() / "here");
  shown({"backup", home() / "here/book.kivo"});
  EXPECT_THAT(std::vector(fs::directory_iterator(home() / "here"), {}), SizeIs(1));
  EXPECT_EQ(fs::status(home() / "here/book.kivo").permissions(), fs::perms(0600));
}

TEST_F(ABackup, ReplacesABookBesideItsService) {
  const auto server = ledger_.start();
  fill();
  const std::string before = seen();
  shown({"backup", file()});
  shown({"delete", "1", "--yes"});
  shown({"rate", "EUR", "--remove"});
  useCurrency("EGP");
  write(settings() / "templates.toml", "# other\n");
  ledger_.post("KEY-5", "Your card was charged USD 1.00 at Later Shop.");
  const std::string replaced = shown({"list", "--json"});

  const ProgramResult refused = run({"restore", file()});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.errors,
            "kivo-ledger: the book is not empty; --replace puts the backup in its place, and saves "
            "it first\n");
  EXPECT_EQ(shown({"list", "--json"}), replaced);

  const std::string said = shown({"restore", file(), "--replace"});
  EXPECT_THAT(said, StartsWith("Restored 4 payments, from 2026-11-02 to 2026-11-21.\n"
                               "The book and settings before that are in " +
                               (folder() / "before-restore-").string()));
  EXPECT_EQ(seen(), before);
  EXPECT_EQ(bytesOf(settings() / "templates.toml"), templates);

  EXPECT_EQ(ledger_.post("KEY-6", "Your card was charged USD 2.00 at Next Shop.").status(), 200);
  const auto listed = nlohmann::json::parse(shown({"list", "--search", "Next Shop", "--json"}));
  ASSERT_EQ(listed.size(), 1U);
  EXPECT_EQ(listed[0]["id"], "6");
  end(*server);

  const std::vector saved(fs::directory_iterator(folder()), {});
  ASSERT_EQ(saved.size(), 1U);
  shown({"restore", "--replace", fs::path(saved.front())});
  EXPECT_EQ(shown({"list", "--json"}), replaced);
  EXPECT_EQ(bytesOf(settings() / "templates.toml"), "# other\n");
}

TEST_F(ABackup, SavesTemplatesThatAnEmptyBookHas) {
  shown({"backup", file()});
  const NewPerson person(home());
  write(settings() / "templates.toml", "# other\n");
  EXPECT_THAT(shown({"restore", file()}), HasSubstr("The book and settings before that are in "));
  EXPECT_EQ(bytesOf(settings() / "templates.toml"), "");
}

TEST_F(ABackup, IsRefusedWithTheReasonAndChangesNothing) {
  shown({"add", "--amount", "7", "--payee", "Kiosk"});
  shown({"backup", file()});
  const std::string whole = bytesOf(file());
  fs::copy(ledger_.file(), home() / "young");
  RawStore(ledger_.file()).run("PRAGMA wal_checkpoint(TRUNCATE)");
  fs::copy(ledger_.file(), home() / "book");
  const std::string before = bytesIn(ledger_.file().parent_path());
  RawStore(home() / "other.sqlite3").run("CREATE TABLE one (two)");
  write(home() / "letter", "Dear Mona");
  write(home() / "short", whole.substr(0, whole.size() / 2));
  write(home() / "changed", std::string(whole).replace(whole.find("Kiosk"), 5, "Kiosq"));
  write(home() / "newer", std::string(whole).replace(63, 1, "\2"));
  for (const auto& [name, reason] : std::vector<std::pair<std::string, std::string>>{
           {"nothing",
            "cannot read \"" + (home() / "nothing").string() + "\": No such file or directory"},
           {"data", "is a folder; name a file in it"},
           {"other.sqlite3", "is no backup of Kivo"},
           {"letter", "is no backup of Kivo"},
           {"short", "is damaged: it has "},
           {"changed", "is damaged: its bytes are not those that were written; take another"},
           {"newer", "was written by a newer version of Kivo; update Kivo"},
           {"young", "is a database in use and not a backup"},
           {"book", "is a book and not a backup"}}) {
    const ProgramResult refused = run({"restore", home() / name, "--replace"});
    EXPECT_EQ(refused.status, 1) << name;
    EXPECT_EQ(refused.output, "");
    EXPECT_THAT(refused.errors, HasSubstr(reason));
  }
  EXPECT_EQ(run({"restore", "-"}).status, 64);
  EXPECT_EQ(bytesIn(ledger_.file().parent_path()), before);
  EXPECT_FALSE(fs::exists(folder()));
}

TEST_F(ABackup, TakesThePlaceOfNoOtherFile) {
  write(home() / "letter", "Dear Mona");
  const ProgramResult refused = run({"backup", home() / "letter"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.errors, "kivo-ledger: cannot write \"" + (home() / "letter").string() +
                                "\": there is a file that is no backup of Kivo; name another, or "
                                "delete it first\n");
  EXPECT_EQ(bytesOf(home() / "letter"), "Dear Mona");
  for (const char* const given : {"-", ""}) EXPECT_EQ(run({"backup", given}).status, 64);
  EXPECT_EQ(run({"backup"}).status, 64);
}

TEST_F(ABackup, OfEachDayIsKeptForThirtyOfThem) {
  const std::string today = "kivo-" + book::currentDay().text() + ".kivo";
  for (int day = 10; day < 45; ++day) {
    write(folder() / ("kivo-20" + std::to_string(day) + "-01-01.kivo"), "");
  }
  for (const char* const name :
       {"kivo-2001-02-30.kivo", "kivo-2001-01-01.kivo.old", "before-restore-2001-01-01-000000.kivo",
        "old-kivo-2001-01-01.kivo"}) {
    write(folder() / name, "");
  }
  fs::create_directory(folder() / "kivo-2002-01-01.kivo");
  EXPECT_THAT(shown({"backup", "--daily"}), HasSubstr((folder() / today).string()));
  EXPECT_TRUE(fs::exists(folder() / today));
  EXPECT_FALSE(fs::exists(folder() / "kivo-2014-01-01.kivo"));
  EXPECT_TRUE(fs::exists(folder() / "kivo-2044-01-01.kivo"));
  EXPECT_THAT(std::vector(fs::directory_iterator(folder()), {}), SizeIs(30 + 5));
  EXPECT_EQ(shown({"backup", "--daily"}), shown({"backup", "--daily"}));
}

TEST_F(ABackup, OfEachDayGoesIntoAFolderThatIsNamed) {
  shown({"backup", "--daily", home() / "stick"});
  EXPECT_TRUE(fs::exists(home() / "stick" / ("kivo-" + book::currentDay().text() + ".kivo")));
  EXPECT_EQ(fs::status(home() / "stick").permissions(), fs::perms(0700));
  const ProgramResult refused = run({"backup", "--daily", home() / "missing/stick"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_THAT(refused.errors, HasSubstr("cannot use the folder"));
}

}  // namespace
}  // namespace kivo::testkit
