// `kivo-ledger import`: old messages from files, through the real program.
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "platform/linux/process/child_process.h"
#include "testkit/chatty_store.h"
#include "testkit/private_ledger.h"

// The banks, merchants and people below do not exist.

namespace kivo::testkit {
namespace {

using linux_platform::ProgramResult;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* charged = "Your card ending 4821 was charged EGP 150.00 at Carrefour City";

class ALedgerThatImports : public testing::Test {
 protected:
  static ProgramResult run(std::vector<std::string> arguments) {
    return linux_platform::runProgram(
        {.program = linux_platform::programFolder() / "kivo-ledger", .arguments = arguments});
  }
  static nlohmann::json json(std::vector<std::string> arguments) {
    arguments.emplace_back("--json");
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, 0) << result.errors;
    return nlohmann::json::parse(result.output);
  }
  static nlohmann::json counts(std::int64_t booked, std::int64_t known = 0,
                               std::int64_t ignored = 0) {
    return {{"booked", booked}, {"review", 0},    {"ignored", ignored},
            {"declined", 0},    {"known", known}, {"messages", booked + known + ignored}};
  }
  std::string written(const std::string& name, const std::string& content) const {
    const auto path = ledger_.folders().home() / name;
    std::ofstream(path, std::ios::binary) << content;
    return path.string();
  }
  static std::string sms(const std::string& sender, const std::string& date,
                         const std::string& body, const std::string& type = "1") {
    return "<sms address=\"" + sender + "\" date=\"" + date + "\" type=\"" + type + "\" body=\"" +
           body + "\" />\n";
  }
  // Sends a message to a service that ends again.
  void receive(const std::string& key, const std::string& text, const std::string& day) {
    const auto server = ledger_.start();
    EXPECT_EQ(ledger_.post(key, text, day).status(), 200);
    server->signal(SIGTERM);
    EXPECT_EQ(server->wait().status, 0);
  }
  // What `command` shows on a terminal on which `answer` is typed.
  static std::string onTerminal(const std::string& command, const std::string& answer) {
    return linux_platform::runProgram(
               {.program = "script",
                .arguments = {"--quiet", "--return", "--command",
                              "stty cols 60 -echo; exec " +
                                  (linux_platform::programFolder() / "kivo-ledger").string() + " " +
                                  command,
                              "/dev/null"},
                .input = answer,
                .environment = {{"SHELL", "/bin/sh"}}})
        .output;
  }

  PrivateLedger ledger_;

 private:
  ScopedVariable zone_{"TZ", "Africa/Cairo"};
};

TEST_F(ALedgerThatImports, BooksEachMessageUnderItsOwnDay) {
  // The second one is of 23:30 in UTC, when it is the next day in Cairo.
  const std::string file =
      written("sms.xml", "<?xml version='1.0' encoding='UTF-8'?>\n<smses count=\"4\">\n" +
                             sms("MyBank", "1704110400000", charged) +
                             sms("MyBank", "1704151800000", "Paid &#55357;&#56832;") +
                             sms("Asha", "1704110400000", charged) +
                             sms("MyBank", "1704110400000", "Thanks", "2") + "</smses>\n");
  EXPECT_EQ(json({"import", file, "--sender", "MyBank"}), counts(1, 0, 1));
  const auto entries = json({"list"});
  ASSERT_THAT(entries, SizeIs(1));
  EXPECT_EQ(entries[0]["date"], "2024-01-01");
  EXPECT_EQ(entries[0]["amount"], "150.00");
  EXPECT_THAT(entries[0]["key"], testing::StartsWith("import-"));
  EXPECT_EQ(json({"import", file, "--sender", "MyBank"}), counts(0, 2));
  EXPECT_EQ(json({"import", file, "--sender=My*", "--sender", "Asha"}), counts(1, 2));
  EXPECT_THAT(json({"list"}), SizeIs(2));
}

TEST_F(ALedgerThatImports, UsesTheDevicesTimeZoneForTheDay) {
  const std::string file =
      written("sms.csv", std::string("date,sender,text\n1704151800000,A,") + charged +
                             "\n2024-03-01T23:30:00,A," + charged + "\n");
  EXPECT_EQ(json({"import", file, "--sender", "A"}), counts(2));
  EXPECT_EQ(json({"list"})[0]["date"], "2024-03-01");
  EXPECT_EQ(json({"list"})[1]["date"], "2024-01-02");
}

TEST_F(ALedgerThatImports, ReadsSeveralFilesOfSeveralFormats) {
  const std::string xml =
      written("a b.xml", "<smses>" + sms("A", "1704110400000", charged) + "</smses>");
  const std::string csv =
      written("b.csv", std::string("date,sender,text\n2024-01-02,A,") + charged + "\n");
  EXPECT_EQ(json({"import", "--sender", "A", xml, csv}), counts(2));
  EXPECT_EQ(json({"import", xml, csv, "--sender", "A", "--from", "2024-01-02"}), counts(0, 1));
}

TEST_F(ALedgerThatImports, FindsTheStoreOfChatty) {
  const ProgramResult none = run({"import", "--chatty", "--sender", "MyBank"});
  EXPECT_EQ(none.status, 1);
  EXPECT_THAT(none.errors, HasSubstr("there is no store of Chatty: "));
  const auto folder = ledger_.folders().home() / ".purple" / "chatty" / "db";
  std::filesystem::create_directories(folder);
  makeChattyStore(folder / "chatty-history.db",
                  chattyMessage(1, charged) + chattyMessage(-1, charged));
  EXPECT_EQ(json({"import", "--chatty", "--sender", "MyBank"}), counts(1));
}

TEST_F(ALedgerThatImports, KnowsWhatCameLive) {
  receive("KEY-1", charged, "2024-01-02");
  const std::string file =
      written("sms.csv", std::string("date,sender,text\n2024-01-01T10:00,A,") + charged +
                             "\n2024-01-01T11:00,A," + charged + "\n");
  EXPECT_EQ(json({"import", file, "--sender", "A", "--dry-run"}), counts(1, 1));
  EXPECT_EQ(json({"import", file, "--sender", "A"}), counts(1, 1));
  EXPECT_THAT(json({"list"}), SizeIs(2));
}

TEST_F(ALedgerThatImports, ChangesNothingInADryRun) {
  const std::string file =
      written("sms.csv", std::string("date,sender,text\n2024-01-01,A,") + charged + "\n");
  EXPECT_EQ(json({"import", file, "--sender", "A", "--dry-run"}), counts(1));
  EXPECT_THAT(json({"list"}), IsEmpty());
  EXPECT_EQ(json({"import", file, "--sender", "A"}), counts(1));
}

TEST_F(ALedgerThatImports, ListsTheSendersWithoutATerminal) {
  const std::string file =
      written("sms.xml", "<smses>" + sms("Asha", "1", "Hi") + sms("Asha", "2", "Hi") +
                             sms("MyBank", "1704110400000", charged) + "</smses>");
  const ProgramResult result = run({"import", file});
  EXPECT_EQ(result.status, 64);
  EXPECT_EQ(result.output,
            "PAYMENTS  MESSAGES  SENDER\n"
            "1         1         MyBank\n"
            "0         2         Asha\n");
  EXPECT_THAT(result.errors, HasSubstr("--sender"));
  EXPECT_THAT(json({"list"}), IsEmpty());
}

TEST_F(ALedgerThatImports, AsksOnATerminalWhichSendersToImport) {
  const std::string file =
      written("sms.xml", "<smses>" + sms("Asha", "1704110400000", charged + std::string(" 2")) +
                             sms("MyBank", "1704110400000", charged) +
                             sms("MyBank", "1704110400001", charged) + "</smses>");
  const std::string shown = onTerminal("import " + file, "Nile\n1\n");
  EXPECT_THAT(shown, AllOf(HasSubstr("1    2         2         MyBank"),
                           HasSubstr("No message is from \"Nile\"."), HasSubstr("Booked"),
                           HasSubstr("Importing")));
  EXPECT_THAT(json({"list"}), SizeIs(2));
}

TEST_F(ALedgerThatImports, ProposesTheSendersOfTheWatcher) {
  const auto folder = std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "kivo";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "sms-watcher.toml") << "senders = [\"My*\"]\n";
  const std::string file =
      written("sms.xml", "<smses>" + sms("Asha", "1704110400000", charged + std::string(" 2")) +
                             sms("MyBank", "1704110400000", charged) + "</smses>");
  EXPECT_THAT(onTerminal("import " + file, "\n"), HasSubstr("[2]"));
  EXPECT_THAT(json({"list"}), SizeIs(1));
}

TEST_F(ALedgerThatImports, KeepsWhatCameBeforeTheBreakOfAFile) {
  const std::string file =
      written("sms.csv", std::string("date,sender,text\n2024-01-01,A,") + charged +
                             "\n2024-13-01,A," + charged + "\n2024-01-03,A," + charged + "\n");
  const ProgramResult result = run({"import", file, "--sender", "A", "--json"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(nlohmann::json::parse(result.output), counts(1));
  EXPECT_EQ(result.errors.substr(0, result.errors.find("; it must")),
            "kivo-ledger: " + file + ": line 3: the date cannot be read");
  EXPECT_THAT(result.errors, HasSubstr("the messages before it are imported"));
  EXPECT_THAT(json({"list"}), SizeIs(1));
}

TEST_F(ALedgerThatImports, BooksNothingWhenOneFileCannotBeRead) {
  const std::string good =
      written("sms.csv", std::string("date,sender,text\n2024-01-01,A,") + charged + "\n");
  const std::string other = written("letter.txt", "Dear Asha\n");
  for (const std::string& bad : {std::string("/no/such.xml"), other}) {
    const ProgramResult result = run({"import", good, bad, "--sender", "A"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr(bad));
    EXPECT_THAT(result.output, IsEmpty());
  }
  EXPECT_THAT(json({"list"}), IsEmpty());
}

TEST_F(ALedgerThatImports, BooksNoMessageOfAnImpossibleTime) {
  const std::string file =
      written("sms.xml", "<smses>" + sms("A", "0", charged) + sms("A", "99999999999999", charged) +
                             "<sms type=\"1\" address=\"A\" body=\"x\"/>" +
                             sms("A", "1704110400000", charged) + "</smses>");
  const ProgramResult result = run({"import", file, "--sender", "A", "--json"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(nlohmann::json::parse(result.output), counts(1, 0, 3));
  EXPECT_THAT(result.errors, HasSubstr("3 messages have a time that cannot be"));
}

TEST_F(ALedgerThatImports, IsUndoneAsOneCommand) {
  const std::string file =
      written("sms.csv", std::string("date,sender,text\n2024-01-01,A,") + charged + "\n");
  EXPECT_EQ(json({"import", file, "--sender", "A"}), counts(1));
  EXPECT_THAT(run({"undo"}).output, HasSubstr("Undone: import "));
  EXPECT_THAT(json({"list"}), IsEmpty());
  EXPECT_EQ(json({"import", file, "--sender", "A"}), counts(1));
}

TEST_F(ALedgerThatImports, SaysWhenNoMessageIsOfTheSender) {
  const std::string file =
      written("sms.csv", std::string("date,sender,text\n2024-01-01,A,") + charged + "\n");
  const ProgramResult result = run({"import", file, "--sender", "a"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, HasSubstr("Messages         0\n"));
  EXPECT_THAT(result.errors, HasSubstr("no received message is of these senders"));
}

TEST_F(ALedgerThatImports, RefusesWrongArguments) {
  const std::string file = written("sms.csv", "date,sender,text\n");
  for (const auto& [arguments, error] :
       std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"import"}, "name a file of messages, or give --chatty"},
           {{"import", file, "--format", "pdf"}, "invalid --format \"pdf\""},
           {{"import", file, "--sender", "*"}, "invalid --sender \"*\""},
           {{"import", file, "--from", "yesterday"}, "invalid --from \"yesterday\""}}) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, 64) << error;
    EXPECT_THAT(result.errors, HasSubstr(error));
  }
}

}  // namespace
}  // namespace kivo::testkit
