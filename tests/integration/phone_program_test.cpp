// The real program kivo-phone, by its command line and without a bus.
#include "phone_program.h"

#include <csignal>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>

#include "platform/linux/http/http_endpoint.h"
#include "platform/linux/process/child_process.h"
#include "queue/pending_sms_queue.h"
#include "store/shared_store.h"
#include "testkit/private_folders.h"

namespace kivo {
namespace {

using linux_platform::ProgramCall;
using linux_platform::ProgramResult;
using testing::HasSubstr;

class APhone : public testing::Test {
 protected:
  static ProgramResult run(std::vector<std::string> arguments) {
    return linux_platform::runProgram(
        {.program = phoneProgram(), .arguments = std::move(arguments)});
  }

  // Runs the program on a terminal of its own of 60 columns.
  static ProgramCall onTerminal(const std::string& arguments) {
    return {.program = "script",
            .arguments = {"--quiet", "--return", "--command",
                          "stty cols 60; exec " + phoneProgram() + " " + arguments, "/dev/null"},
            .environment = {{"SHELL", "/bin/sh"}}};
  }

  static std::optional<std::string> stored(StoreKey key) { return open().readText(key); }
  static SharedStore open() { return SharedStore::open(appGroup).value(); }

  // The content of a file in the home folder.
  [[nodiscard]] std::string contentOf(const char* name) const {
    std::ostringstream content;
    content << std::ifstream(folders_.home() / name).rdbuf();
    return content.str();
  }

  static void expectFailure(const std::vector<std::string>& arguments, int status,
                            const std::string& error) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "kivo-phone: " + error + "\n");
  }

  testkit::PrivateFolders folders_;
};

TEST_F(APhone, SignsInToTheLedgerOnThisMachine) {
  const std::string socket = (folders_.home() / "run" / "kivo" / "ledger.sock").string();
  const std::string url = linux_platform::urlOfSocket(socket);
  const ProgramResult result = run({"sign-in", "--local"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output,
            "Signed in at the ledger on this machine\n"
            "The backend cannot be reached now: The host did not take the connection (there is "
            "no such socket). Messages wait until it can.\nsystemctl --user start "
            "kivo-ledger.socket starts it, or kivo-ledger serve by hand.\n");
  EXPECT_EQ(stored(StoreKeys::userId), "local");
  EXPECT_EQ(stored(StoreKeys::supabaseUrl), url);
  EXPECT_EQ(stored(StoreKeys::currency), std::nullopt);
  EXPECT_EQ(run({"sign-in", "--local", "--user-id", "me", "--currency", "USD"}).status, 0);
  EXPECT_EQ(stored(StoreKeys::userId), "me");
  EXPECT_EQ(stored(StoreKeys::currency), "USD");
}

TEST_F(APhone, HasTheServiceManagerStartTheLedgerAtALocalSignIn) {
  const std::filesystem::path programs = folders_.home() / "programs";
  std::filesystem::create_directories(programs);
  const std::filesystem::path manager = programs / "systemctl";
  const std::string ledger = (linux_platform::programFolder() / "kivo-ledger").string();
  std::ofstream(manager)
      << "#!/bin/sh\necho \"$@\" >>\"$HOME/asked\"\n'" << ledger
      << "' serve </dev/null >/dev/null 2>&1 &\necho $! >\"$HOME/ledger\"\n"
         "until [ -S \"$XDG_RUNTIME_DIR/kivo/ledger.sock\" ]; do sleep 0.01; done\n";
  std::filesystem::permissions(manager, std::filesystem::perms::owner_all);
  const testkit::ScopedVariable path("PATH", programs.string() + ":/usr/bin:/bin");

  const std::string answer = "Signed in at the ledger on this machine\nThe backend answers.\n";
  EXPECT_EQ(run({"sign-in", "--local"}).output, answer);
  EXPECT_EQ(run({"sign-in", "--local"}).output, answer);
  EXPECT_EQ(contentOf("asked"), "--user start kivo-ledger.socket\n");
  kill(std::stoi(contentOf("ledger")), SIGTERM);
}

TEST_F(APhone, SignsInToOneBackendOnly) {
  expectFailure({"sign-in", "--local", "--url", "https://127.0.0.1:1"}, 64,
                "give either --local or --url");
  expectFailure({"sign-in", "--user-id", "u"}, 64,
                "--url is missing, or --local (see kivo-phone sign-in --help)");
  const testkit::ScopedVariable unset("XDG_RUNTIME_DIR", std::nullopt);
  expectFailure(
      {"sign-in", "--local"}, 1,
      "XDG_RUNTIME_DIR is not set, so that there is no place for the socket of kivo-ledger");
  EXPECT_EQ(stored(StoreKeys::userId), std::nullopt);
}

TEST_F(APhone, StoresTheValuesOfASignInUnchanged) {
  const ProgramResult result =
      run({"sign-in", "--user-id", " u\tü ", "--url", "https://127.0.0.1:1/", "--currency", "usd"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, testing::StartsWith("Signed in at https://127.0.0.1:1/\n"));
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(stored(StoreKeys::userId), " u\tü ");
  EXPECT_EQ(stored(StoreKeys::supabaseUrl), "https://127.0.0.1:1/");
  EXPECT_EQ(stored(StoreKeys::currency), "usd");
}

TEST_F(APhone, RepairsInvalidUtf8) {
  EXPECT_EQ(run({"sign-in", "--user-id", "a\xff", "--url", "http://127.0.0.1:1"}).status, 0);
  EXPECT_EQ(stored(StoreKeys::userId), "a\uFFFD");
}

TEST_F(APhone, KeepsTheCurrencyWhenNoOtherIsGiven) {
  EXPECT_EQ(run({"sign-in", "--user-id", "u", "--url", "http://127.0.0.1:1"}).status, 0);
  EXPECT_EQ(stored(StoreKeys::currency), std::nullopt);
  run({"sign-in", "--user-id", "u", "--url", "http://127.0.0.1:1", "--currency", "USD"});
  run({"sign-in", "--user-id", "v", "--url", "http://127.0.0.1:2"});
  EXPECT_EQ(stored(StoreKeys::currency), "USD");
}

TEST_F(APhone, StoresAnEmptyCurrency) {
  EXPECT_EQ(
      run({"sign-in", "--user-id", "u", "--url", "http://127.0.0.1:1", "--currency", ""}).status,
      0);
  EXPECT_EQ(stored(StoreKeys::currency), "");
}

TEST_F(APhone, SignsInWithAnEmptyValueAfterAnEqualsSign) {
  EXPECT_EQ(
      run({"sign-in", "--user-id=", "--currency", "EGP", "--url", "http://127.0.0.1:1"}).status, 0);
  EXPECT_EQ(stored(StoreKeys::userId), "");
  EXPECT_EQ(stored(StoreKeys::currency), "EGP");
}

TEST_F(APhone, RefusesAUrlThatCannotBeParsedAndStoresNothing) {
  for (const char* const url : {"http://host:abc", "http://a b", "http://[::1", "http://käse"}) {
    expectFailure({"sign-in", "--user-id", "u", "--url", url}, 64,
                  std::string("invalid --url \"") + url + "\": this is no URL; nothing was stored");
  }
  EXPECT_EQ(stored(StoreKeys::userId), std::nullopt);
}

TEST_F(APhone, WarnsWhenASignInCannotWork) {
  EXPECT_THAT(run({"sign-in", "--user-id", "", "--url", "http://127.0.0.1:1"}).output,
              HasSubstr("counts as signed out"));
  EXPECT_THAT(run({"sign-in", "--user-id", "u", "--url", "example.com"}).output,
              HasSubstr("until then every message waits"));
}

TEST_F(APhone, RefusesAnUnknownNotificationStatus) {
  expectFailure({"notifications", "maybe"}, 64,
                "STATUS is one of authorized, denied, not-determined, provisional, ephemeral");
}

TEST_F(APhone, EmptiesUserAndBackendOnSignOutAndKeepsTheRest) {
  run({"sign-in", "--user-id", "u", "--url", "http://127.0.0.1:1", "--currency", "USD"});
  EXPECT_EQ(run({"sign-out"}).output, "Signed out.\n");
  EXPECT_EQ(stored(StoreKeys::userId), "");
  EXPECT_EQ(stored(StoreKeys::supabaseUrl), "");
  EXPECT_EQ(stored(StoreKeys::currency), "USD");
}

TEST_F(APhone, NeverPrintsTheUserIdentifier) {
  const ProgramResult result =
      run({"sign-in", "--user-id", "person-17", "--url", "http://127.0.0.1:1", "person-17"});
  EXPECT_EQ(result.status, 64);
  EXPECT_THAT(result.output + result.errors, testing::Not(HasSubstr("person-17")));
}

TEST_F(APhone, StoresAndPrintsValues) {
  EXPECT_EQ(run({"store", "set", "key", "[] list"}).output, "");
  EXPECT_EQ(run({"store", "get", "key"}).output, "[] list\n");
  EXPECT_EQ(run({"store", "set", "--float", "smsQueueDrainLock", "1e3"}).status, 0);
  EXPECT_EQ(open().readFloat(StoreKeys::smsQueueDrainLock), 1000);
  EXPECT_EQ(run({"store", "get", "smsQueueDrainLock"}).output, "1000.0\n");
  EXPECT_EQ(run({"store", "list"}).output,
            "key                text     [] list\n"
            "smsQueueDrainLock  float    1000.0\n");
}

TEST_F(APhone, ReportsAnAbsentKey) {
  expectFailure({"store", "get", "absent"}, 1,
                "there is no key \"absent\"; kivo-phone store list shows all keys");
}

TEST_F(APhone, DistinguishesAnEmptyTextFromAnAbsentOne) {
  run({"store", "set", "key", ""});
  const ProgramResult result = run({"store", "get", "key"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "\n");
}

TEST_F(APhone, RefusesAFloatThatIsNotFinite) {
  for (const char* const value : {"", "abc", "1 ", "nan", "inf"}) {
    expectFailure({"store", "set", "--float", "key", value}, 64,
                  "VALUE must be a finite number; nothing was stored");
  }
  expectFailure({"store", "get", "key"}, 1,
                "there is no key \"key\"; kivo-phone store list shows all keys");
}

TEST_F(APhone, ReportsThatTheStoreCannotBeOpened) {
  std::ofstream(folders_.dataHome()) << "a file where the folder should be";
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {"sign-in", "--user-id", "u", "--url", "http://127.0.0.1:1"},
           {"sign-out"},
           {"store", "list"},
           {"store", "get", "key"},
           {"store", "set", "key", "value"},
           {"queue"},
           {"widget"}}) {
    expectFailure(arguments, 1,
                  "cannot open the store: " + folders_.storeFile().parent_path().string() +
                      " cannot be created: Not a directory");
  }
}

TEST_F(APhone, PrintsHelpAndVersionAndSuggestsCommands) {
  EXPECT_THAT(run({"--help"}).output, HasSubstr("sign-in"));
  EXPECT_THAT(run({"--version"}).output, testing::StartsWith("kivo-phone "));
  const ProgramResult alone = run({});
  EXPECT_EQ(alone.status, 64);
  EXPECT_EQ(alone.output, "");
  EXPECT_THAT(alone.errors, HasSubstr("sign-in"));
  expectFailure({"sing-in"}, 64,
                "unknown command \"sing-in\"; did you mean \"sign-in\"? (see kivo-phone --help)");
  expectFailure({"sign-in", "--url", "http://127.0.0.1:1"}, 64,
                "--user-id is missing (see kivo-phone sign-in --help)");
  expectFailure({"notifications", "maybe"}, 64,
                "STATUS is one of authorized, denied, not-determined, provisional, ephemeral");
}

TEST_F(APhone, ReportsThatStandardOutputIsFull) {
  const ProgramResult result = linux_platform::runProgram(
      {.program = "sh", .arguments = {"-c", "exec \"$0\" queue >/dev/full", phoneProgram()}});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "kivo-phone: standard output cannot be written\n");
}

TEST_F(APhone, ShowsTheQueue) {
  EXPECT_EQ(run({"queue"}).output, "Nothing waits to be sent.\n");
  {
    SharedStore store = open();
    PendingSmsQueue::save({{.id = "A",
                            .smsText = "Paid EGP 12\nat Cafe",
                            .expenseDate = "2020-01-01",
                            .queuedAt = "2020-01-01T00:00:00Z",
                            .retryCount = 2,
                            .source = "sms"}},
                          store);
  }
  const std::string listing = run({"queue"}).output;
  EXPECT_THAT(listing, testing::StartsWith("1 text waits to be sent.\n"));
  EXPECT_THAT(listing, HasSubstr(" days"));
  EXPECT_THAT(listing, HasSubstr("2 times      Paid EGP 12\\nat Cafe\n"));
}

TEST_F(APhone, ReportsAQueueThatCannotBeRead) {
  for (const char* const broken : {"[{}]", "no JSON"}) {
    run({"store", "set", "pendingSmsQueue", broken});
    expectFailure({"queue"}, 1,
                  "the stored queue cannot be read; the next text that is queued replaces it");
  }
  run({"store", "set", "pendingSmsQueue", " [ ]"});
  EXPECT_EQ(run({"queue"}).output, "Nothing waits to be sent.\n");
}

TEST_F(APhone, EscapesControlCharactersOnATerminalOnly) {
  run({"store", "set", "key", "a\x1b[2Jb"});
  EXPECT_EQ(run({"store", "list"}).output, "key  text     a\x1b[2Jb\n");
  EXPECT_EQ(run({"store", "get", "key"}).output, "a\x1b[2Jb\n");
  EXPECT_EQ(linux_platform::runProgram(onTerminal("store list")).output,
            "key  text     a\\x1b[2Jb\r\n");
  EXPECT_EQ(linux_platform::runProgram(onTerminal("store get key")).output, "a\\x1b[2Jb\r\n");
}

TEST_F(APhone, CutsQueuedTextsToTheWidthOfTheTerminal) {
  SharedStore store = open();
  PendingSmsQueue::save({{.id = "A",
                          .smsText = std::string(200, 'x'),
                          .expenseDate = "2020-01-01",
                          .queuedAt = "never",
                          .retryCount = 0,
                          .source = "sms"}},
                        store);
  EXPECT_THAT(linux_platform::runProgram(onTerminal("queue")).output,
              testing::EndsWith("1  unknown  not yet      " + std::string(34, 'x') + "…\r\n"));
}

TEST_F(APhone, ReportsThatTheCenterDoesNotAnswer) {
  expectFailure({"notifications", "authorized"}, 1, "the notification center does not answer");
}

TEST_F(APhone, ReportsThatTheWidgetNeedsABus) {
  expectFailure({"widget", "--watch"}, 1, "there is no session bus");
}

}  // namespace
}  // namespace kivo
