// The real kivo-server, by its commands, by browsers and by phones that send it messages.
#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "platform/linux/http/http_url_session.h"
#include "platform/linux/process/child_process.h"
#include "testkit/http_exchange.h"
#include "testkit/loopback_socket.h"
#include "testkit/private_folders.h"
#include "testkit/private_ledger.h"
#include "testkit/private_phone.h"

namespace kivo::testkit {
namespace {

using linux_platform::ChildProcess;
using linux_platform::ProgramResult;
using namespace std::chrono_literals;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// The folders of one device.
class Device {
 public:
  [[nodiscard]] ProgramResult run(const char* program, std::vector<std::string> arguments,
                                  const std::string& input = "") const {
    const std::string home = folder_.path().string();
    return linux_platform::runProgram({.program = linux_platform::programFolder() / program,
                                       .arguments = std::move(arguments),
                                       .input = input,
                                       .environment = {{"HOME", home},
                                                       {"XDG_DATA_HOME", home + "/data"},
                                                       {"XDG_CONFIG_HOME", home + "/config"},
                                                       {"XDG_RUNTIME_DIR", home}}});
  }
  // The dialog for a bank's message.
  [[nodiscard]] std::string process(const std::string& text) const {
    return run("kivo-intents", {"perform", "ProcessSMSIntent", "--smsText", "-"}, text).output;
  }

 private:
  TemporaryFolder folder_;
};

class AServer : public testing::Test {
 protected:
  static ProgramResult run(std::vector<std::string> arguments, const std::string& input = "") {
    return linux_platform::runProgram({.program = linux_platform::programFolder() / "kivo-server",
                                       .arguments = std::move(arguments),
                                       .input = input});
  }
  // The output of a command that has to succeed.
  static std::string shown(std::vector<std::string> arguments, const std::string& input = "") {
    const ProgramResult result = run(std::move(arguments), input);
    EXPECT_EQ(result.status, 0) << result.errors;
    return result.output;
  }
  static nlohmann::json json(std::vector<std::string> arguments) {
    arguments.emplace_back("--json");
    return nlohmann::json::parse(shown(std::move(arguments)));
  }
  static void expectFailure(const std::vector<std::string>& arguments, int status,
                            const std::string& error) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "kivo-server: " + error + "\n");
  }

  [[nodiscard]] std::string base() const { return "http://127.0.0.1:" + std::to_string(port_); }

  // Starts `serve` on the port of this test and waits until it listens.
  [[nodiscard]] std::unique_ptr<ChildProcess> start() const {
    auto server = std::make_unique<ChildProcess>(linux_platform::ProgramCall{
        .program = linux_platform::programFolder() / "kivo-server",
        .arguments = {"serve", "--listen", "127.0.0.1:" + std::to_string(port_), "--public-url",
                      base()}});
    EXPECT_TRUE(eventually([&] { return server->outputSoFar().ends_with("\n"); }, 30s));
    return server;
  }
  // Makes the book Family of Mona and Ali.
  static void makeFamily() {
    shown({"book", "add", "Family", "--currency", "EGP"});
    shown({"person", "add", "Mona", "--book", "Family"});
    shown({"person", "add", "Ali", "--book", "Family"});
  }
  // Returns the address of a new device.
  static std::string addDevice(const std::string& person, const std::string& name) {
    const std::string text = shown({"device", "add", person, "--name", name});
    const std::size_t begin = text.find("http://");
    return text.substr(begin, text.find('\n', begin) - begin);
  }
  static void signIn(const Device& device, const std::string& user, const std::string& url) {
    EXPECT_EQ(device.run("kivo-phone", {"sign-in", "--user-id", user, "--url", url}).status, 0);
  }
  static void end(ChildProcess& server) {
    server.signal(SIGTERM);
    const ProgramResult result = server.wait();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
  }

  PrivateFolders folders_;
  linux_platform::HTTPURLSession session_;
  std::uint16_t port_ = RefusedPort().port();
};

TEST_F(AServer, KeepsOneBookForTwoPhones) {
  makeFamily();
  const auto server = start();
  const Device mona;
  const Device ali;
  signIn(mona, "Mona", addDevice("Mona", "phone"));
  signIn(ali, "Ali", addDevice("Ali", "phone"));
  EXPECT_EQ(mona.process(purchase), "Tracked EGP\u00a0150.00 at Carrefour City\n");
  EXPECT_EQ(ali.process("Your card ending 7777 was charged EGP 60.00 at Cilantro."),
            "Tracked EGP\u00a060.00 at Cilantro\n");
  EXPECT_EQ(json({"list", "--book", "Family"}).size(), 2U);
  EXPECT_THAT(shown({"summary", "--book", "family"}), HasSubstr("210.00"));
  end(*server);
}

TEST_F(AServer, ShowsAPhonesSecretNowhereAfterTheSignIn) {
  makeFamily();
  const auto server = start();
  const std::string url = addDevice("Mona", "phone");
  const std::string secret = url.substr(url.rfind('/') + 1);
  const Device mona;
  const auto signedIn =
      mona.run("kivo-phone", {"sign-in", "--user-id", "Mona", "--url", "-"}, url + "\n");
  EXPECT_EQ(signedIn.output, "Signed in at " + base() + "/p/…\nThe backend answers.\n");
  const auto status = mona.run("kivo-phone", {"status"});
  EXPECT_THAT(status.output, HasSubstr("at " + base() + "/p/…\n"));
  shown({"device", "revoke", "phone"});
  const std::string dialog = mona.process(purchase);
  EXPECT_THAT(dialog, HasSubstr("Saved offline"));
  const auto wrong = mona.run("kivo-phone", {"sign-in", "--user-id", "Mona", "--url", url + " x"});
  EXPECT_EQ(wrong.status, 64);
  for (const std::string& text :
       {signedIn.output, signedIn.errors, status.output, dialog, wrong.errors,
        mona.run("kivo-phone", {"status"}).output, mona.run("kivo-phone", {"queue"}).output,
        mona.run("kivo-phone", {"queue", "send"}).output}) {
    EXPECT_THAT(text, Not(HasSubstr(secret)));
  }
  end(*server);
}

TEST_F(AServer, KeepsAMessageWaitingOnARevokedPhoneUntilItSignsInAgain) {
  makeFamily();
  const auto server = start();
  const Device mona;
  signIn(mona, "Mona", addDevice("Mona", "phone"));
  shown({"device", "revoke", "phone"});
  EXPECT_THAT(mona.process(purchase), HasSubstr("Saved offline"));
  EXPECT_TRUE(json({"list", "--book", "Family"}).empty());
  signIn(mona, "Mona", addDevice("Mona", "phone"));
  EXPECT_EQ(mona.run("kivo-phone", {"queue", "send"}).status, 0);
  EXPECT_EQ(json({"list", "--book", "Family"}).size(), 1U);
}

TEST_F(AServer, LosesNothingWhenItIsKilledBetweenMessages) {
  makeFamily();
  auto server = start();
  const Device mona;
  signIn(mona, "Mona", addDevice("Mona", "phone"));
  EXPECT_THAT(mona.process(purchase), StartsWith("Tracked"));
  server->signal(SIGKILL);
  server->wait();
  EXPECT_THAT(mona.process("Your card ending 4821 was charged EGP 60.00 at Cilantro."),
              HasSubstr("Saved offline"));
  server = start();
  EXPECT_EQ(mona.run("kivo-phone", {"queue", "send"}).status, 0);
  EXPECT_EQ(json({"list", "--book", "Family"}).size(), 2U);
}

TEST_F(AServer, RunsSideBySideWithAnotherOnOneBook) {
  makeFamily();
  const auto one = start();
  const std::string url = addDevice("Mona", "phone");
  const std::string first = base();
  port_ = RefusedPort().port();
  const auto other = start();
  const std::string path = url.substr(first.size()) + "/functions/v1/sms-extraction";
  std::vector<std::unique_ptr<RunningExchange>> exchanges;
  for (int number = 0; number < 40; ++number) {
    const std::string body = R"({"sms_text":"Your card ending 4821 was charged EGP 1)" +
                             std::to_string(number) +
                             R"(.00 at Cilantro.","user_id":"Mona","expense_date":"2026-11-21",)" +
                             R"("idempotency_key":"KEY-)" + std::to_string(number / 2) + R"("})";
    exchanges.push_back(std::make_unique<RunningExchange>(
        session_, post((number % 2 == 0 ? first : base()) + path, body)));
  }
  std::vector<std::string> answers;
  for (const auto& running : exchanges) {
    const Outcome outcome = running->wait();
    EXPECT_EQ(outcome.status(), 200);
    answers.push_back(outcome.body());
  }
  for (std::size_t at = 0; at < answers.size(); at += 2) EXPECT_EQ(answers[at], answers[at + 1]);
  EXPECT_EQ(json({"list", "--book", "Family"}).size(), 20U);
  end(*one);
  end(*other);
}

TEST_F(AServer, PrintsADevicesAddressOnceAndSaysWhatItIs) {
  makeFamily();
  const auto server = start();
  const std::string text = shown({"device", "add", "Mona", "--name", "phone"});
  EXPECT_THAT(text,
              AllOf(HasSubstr("kivo-phone sign-in --user-id \"Mona\" --url " + base() + "/p/"),
                    HasSubstr("It is shown this once"), Not(HasSubstr("\x1b"))));
  EXPECT_THAT(shown({"list"}), Not(HasSubstr("/p/")));
}

TEST_F(AServer, GivesNoAddressBeforeItKnowsItsOwn) {
  makeFamily();
  expectFailure({"device", "add", "Mona", "--name", "phone"}, 1,
                "the server's address is not known yet; run kivo-server serve --public-url once");
  EXPECT_EQ(shown({"list"}), "Family\n  Ali\n  Mona\n");
}

TEST_F(AServer, ListsPeopleWithoutABookAndPaymentsWithOne) {
  EXPECT_EQ(shown({"list"}), "There is no book yet; kivo-server book add makes one.\n");
  makeFamily();
  EXPECT_EQ(json({"list"})[0]["people"][1]["person"], "Mona");
  EXPECT_EQ(shown({"list", "--book", "Family"}), "No transaction fits.\n");
  expectFailure({"list", "--month", "2026-11"}, 64,
                "--book is missing: these options are for payments");
}

TEST_F(AServer, HasTheCommandsOfTheLedgerForEachBook) {
  makeFamily();
  shown({"book", "add", "Club", "--currency", "EUR"});
  shown({"person", "add", "Zoe", "--book", "Club"});
  shown({"add", "--book", "Family", "--person", "Mona", "--amount", "12.50", "--payee", "Bakery"});
  shown({"add", "--book", "Club", "--person", "Zoe", "--amount", "3", "--payee", "Kiosk"});
  EXPECT_EQ(json({"list", "--book", "Family"})[0]["amount"], "12.50");
  EXPECT_EQ(json({"list", "--book", "Family"})[0]["currency"], "EGP");
  EXPECT_EQ(json({"list", "--book", "Club"})[0]["currency"], "EUR");
  shown({"edit", "1", "--book", "Family", "--category", "Dining"});
  EXPECT_EQ(json({"show", "1", "--book", "Family"})["category"], "Dining");
  shown({"undo", "--book", "Family"});
  EXPECT_NE(json({"show", "1", "--book", "Family"})["category"], "Dining");
  EXPECT_THAT(shown({"export", "--book", "Club", "--format", "csv"}), HasSubstr("Kiosk"));
  EXPECT_EQ(run({"summary"}).status, 64);
  expectFailure({"summary", "--book", "Famly"}, 1,
                "there is no book \"Famly\"; kivo-server list shows all");
}

TEST_F(AServer, SaysWhosePaymentsAreWhose) {
  makeFamily();
  const std::vector<std::string> bread = {"--amount", "3", "--payee", "Bakery"};
  const auto add = [&](const std::string& person) {
    std::vector<std::string> words = {"add", "--book", "Family", "--person", person};
    words.insert(words.end(), bread.begin(), bread.end());
    return words;
  };
  shown(add("mona"));
  EXPECT_THAT(shown({"list", "--book", "Family"}), Not(HasSubstr("(of Mona)")));
  EXPECT_THAT(shown(add("Ali")), Not(HasSubstr("looks like")));
  EXPECT_THAT(shown({"list", "--book", "Family"}),
              AllOf(HasSubstr("(of Mona)"), HasSubstr("(of Ali)")));
  EXPECT_THAT(shown({"show", "1", "--book", "Family"}), HasSubstr("Person       Mona\n"));
  EXPECT_EQ(json({"list", "--book", "Family"})[0]["person"], "Ali");
}

TEST_F(AServer, AddsNoPaymentsOfSomebodyElse) {
  makeFamily();
  shown({"book", "add", "Club", "--currency", "EUR"});
  expectFailure({"add", "--book", "Club", "--person", "Mona", "--amount", "3", "--payee", "Kiosk"},
                1, "Mona is a person of the book Family, not of Club");
  expectFailure({"import", "messages.csv", "--book", "Club", "--person", "Eve"}, 1,
                "there is no person \"Eve\"; kivo-server list shows all");
  EXPECT_EQ(run({"add", "--book", "Club", "--amount", "3", "--payee", "Kiosk"}).status, 64);
  EXPECT_TRUE(json({"list", "--book", "Club"}).empty());
}

TEST_F(AServer, AdvisesItsOwnCommandsWithTheBooksName) {
  shown({"book", "add", "Mona's house", "--currency", "EGP"});
  shown({"person", "add", "Mona", "--book", "Mona's house"});
  shown({"add", "--book", "Mona's house", "--person", "Mona", "--amount", "3", "--payee", "Kiosk",
         "--account", "4821"});
  expectFailure({"accounts", "name", "9999", "Card", "--book", "Mona's house"}, 1,
                "no payment is of the account 9999; kivo-server accounts --book 'Mona'\\''s house' "
                "shows them");
}

TEST_F(AServer, TakesABackupOfALocalBookAndGivesOneBack) {
  const Device before;
  const std::string backup = (folders_.home() / "before").string();
  EXPECT_EQ(before.run("kivo-ledger", {"add", "--amount", "12.50", "--payee", "Bakery"}).status, 0);
  EXPECT_EQ(before.run("kivo-ledger", {"backup", backup}).status, 0);
  makeFamily();
  EXPECT_THAT(shown({"restore", "--book", "Family", backup}), HasSubstr("Restored 1 payment"));
  EXPECT_EQ(json({"list", "--book", "Family"})[0]["description"], "Bakery");
  shown({"add", "--book", "Family", "--person", "Ali", "--amount", "3", "--payee", "Kiosk"});
  const std::string given = (folders_.home() / "given").string();
  shown({"backup", "--book", "Family", given});
  const Device after;
  EXPECT_EQ(after.run("kivo-ledger", {"restore", given}).status, 0);
  EXPECT_EQ(nlohmann::json::parse(after.run("kivo-ledger", {"list", "--json"}).output).size(), 2U);
}

TEST_F(AServer, ErasesAPersonForGood) {
  makeFamily();
  const auto server = start();
  const Device mona;
  signIn(mona, "Mona", addDevice("Mona", "phone"));
  EXPECT_THAT(mona.process(purchase), StartsWith("Tracked"));
  EXPECT_EQ(run({"person", "remove", "Mona"}).status, 64);
  EXPECT_EQ(shown({"person", "remove", "Mona", "--yes"}),
            "Mona is gone, with 1 payment, all devices and messages.\n");
  EXPECT_EQ(shown({"list"}), "Family\n  Ali\n");
  EXPECT_TRUE(json({"list", "--book", "Family"}).empty());
  EXPECT_THAT(mona.process(purchase), HasSubstr("Saved offline"));
  expectFailure({"person", "remove", "Mona", "--yes"}, 1,
                "there is no person \"Mona\"; kivo-server list shows all");
}

TEST_F(AServer, RefusesAnAddressItCannotListenOnOrGiveAway) {
  expectFailure({"serve", "--listen", "kivo", "--public-url", base()}, 1,
                "\"kivo\" is no address such as 127.0.0.1:8787");
  expectFailure({"serve", "--listen", "127.0.0.1:0", "--public-url", "http://kivo.example"}, 64,
                "--public-url is no address such as https://kivo.example.org; http is for this "
                "machine alone");
  const auto server = start();
  const ProgramResult second =
      run({"serve", "--listen", "127.0.0.1:" + std::to_string(port_), "--public-url", base()});
  EXPECT_EQ(second.status, 1);
  EXPECT_THAT(second.errors, HasSubstr("cannot be listened on: Address already in use"));
}

TEST_F(AServer, AnswersEveryMessageOfAHastyPerson) {
  makeFamily();
  const auto server = start();
  const std::string url = addDevice("Mona", "phone") + "/functions/v1/sms-extraction";
  std::vector<std::unique_ptr<RunningExchange>> exchanges;
  for (int number = 0; number < 210; ++number) {
    const std::string body =
        R"({"sms_text":"Hello","user_id":"Mona","expense_date":"2026-11-21","idempotency_key":"K)" +
        std::to_string(number) + R"("})";
    exchanges.push_back(std::make_unique<RunningExchange>(session_, post(url, body)));
  }
  for (const auto& running : exchanges) EXPECT_EQ(running->wait().status(), 200);
}

TEST_F(AServer, AnswersWhatWaitsWhenItEnds) {
  makeFamily();
  const auto server = start();
  const std::string url = addDevice("Mona", "phone") + "/functions/v1/sms-extraction";
  std::vector<std::unique_ptr<RunningExchange>> exchanges;
  for (int number = 0; number < 240; ++number) {  // the last one would wait for four seconds
    exchanges.push_back(std::make_unique<RunningExchange>(session_, post(url, "{}")));
  }
  std::this_thread::sleep_for(1s);
  const auto begin = std::chrono::steady_clock::now();
  end(*server);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);
  for (const auto& running : exchanges) EXPECT_EQ(running->wait().status(), 400);
}

}  // namespace
}  // namespace kivo::testkit
