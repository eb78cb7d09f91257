// The messages that the watcher hands on, and their senders.
#include "store/shared_store.h"
#include "watched_phone.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testkit::message;
using testkit::sent;

class AnSmsWatcher : public testkit::WatchedPhone {
 protected:
  AnSmsWatcher() { startIntents(); }
};

TEST_F(AnSmsWatcher, HandsOnAMessageOfANamedSender) {
  startModemManager();
  startWatcher();
  receive(message("1", "Paid 150"));
  EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
  EXPECT_EQ(endWatcher().status, 0);
}

TEST_F(AnSmsWatcher, HandsOnATextUnchanged) {
  startModemManager({message("1", R"( بنك نيلو: تم خصم ١٥٠٫٠٠ ج.م\t💸 \u2028é )")});
  startWatcher();
  EXPECT_THAT(waitForHandedOn(1), ElementsAre(" بنك نيلو: تم خصم ١٥٠٫٠٠ ج.م\\t💸 \u2028é "));
}

TEST_F(AnSmsWatcher, IgnoresMessagesOfOtherSenders) {
  startModemManager({message("1", "Dinner?", "+201001234567")});
  startWatcher();
  receive(message("2", "Dinner at eight?", "MyBankers"));
  receive(message("3", "Dinner at nine?", "mybank"));
  receive(message("4", "Dinner at ten?", ""));
  EXPECT_THAT(handedOnBeforeOneMore(), IsEmpty());
}

TEST_F(AnSmsWatcher, MatchesASenderByAPattern) {
  writeSettings("senders = ['*Bank*', '0020 100-*']");
  startModemManager();
  startWatcher();
  receive(message("1", "One", "AD-MyBank-S"));
  receive(message("2", "Two", "+201001234567"));
  receive(message("3", "Three", "+201101234567"));
  EXPECT_THAT(waitForHandedOn(2), ElementsAre("One", "Two"));
}

TEST_F(AnSmsWatcher, ReadsNothingUntilASenderIsNamedAndReportsItOnce) {
  writeSettings("");
  startModemManager({message("1", "Paid 150")});
  startWatcher();
  receive(message("2", "Paid 151"));
  std::this_thread::sleep_for(500ms);
  EXPECT_EQ(modemCalls(), "('[]',)\n");
  EXPECT_EQ(endWatcher().errors,
            "kivo-sms-watcher: no sender is named, so no message is read; name your bank's with: "
            "kivo-phone watch add SENDER\n");
  EXPECT_THAT(handedOn(), IsEmpty());
}

TEST_F(AnSmsWatcher, ReadsNothingWithoutSettings) {
  std::filesystem::remove_all(settingsFile().parent_path());
  startModemManager({message("1", "Paid 150")});
  startWatcher();
  std::this_thread::sleep_for(300ms);
  EXPECT_EQ(modemCalls(), "('[]',)\n");
}

TEST_F(AnSmsWatcher, FollowsASenderThatIsAddedWhileItRuns) {
  writeSettings("");
  startModemManager({message("1", "Paid 150")});
  startWatcher();
  EXPECT_EQ(watch({"add", "MyBank"}).status, 0);
  EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
  receive(message("2", "Paid 151"));
  EXPECT_THAT(waitForHandedOn(2), ElementsAre("Paid 150", "Paid 151"));
}

TEST_F(AnSmsWatcher, IgnoresASenderThatIsRemovedWhileItRuns) {
  writeSettings(R"(senders = ["MyBank", "Other"])");
  startModemManager();
  startWatcher();
  receive(message("1", "Paid 150", "Other"));
  EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
  EXPECT_EQ(watch({"remove", "Other"}).status, 0);
  receive(message("2", "Paid 151", "Other"));
  EXPECT_THAT(handedOnBeforeOneMore(), ElementsAre("Paid 150"));
}

TEST_F(AnSmsWatcher, HandsOnNothingWhileItsSettingsAreBroken) {
  writeSettings("senders = [\"MyBank\"\nMARKSENDER");
  startModemManager({message("1", "Paid 150")});
  startWatcher();
  std::this_thread::sleep_for(500ms);
  EXPECT_EQ(modemCalls(), "('[]',)\n");
  EXPECT_THAT(handedOn(), IsEmpty());
  writeSettings(R"(senders = ["MyBank"])");
  EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
  const std::string errors = endWatcher().errors;
  EXPECT_THAT(errors, StartsWith("kivo-sms-watcher: " + settingsFile().string() + ": line "));
  EXPECT_THAT(errors, HasSubstr("this is not valid TOML; no message is handed on until this is "
                                "fixed\nkivo-sms-watcher: handing on the messages of 1 sender\n"));
  EXPECT_THAT(errors, Not(HasSubstr("MARKSENDER")));
}

TEST_F(AnSmsWatcher, HandsOnEarlierMessagesOnceItsSettingsAreFixed) {
  startModemManager();
  startWatcher();
  receive(message("1", "Paid 150"));
  EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
  writeSettings("broken");
  std::this_thread::sleep_for(300ms);
  receive(message("2", "Paid 151"));
  writeSettings(R"(senders = ["MyBank"])");
  EXPECT_THAT(waitForHandedOn(2), ElementsAre("Paid 150", "Paid 151"));
}

TEST_F(AnSmsWatcher, FindsItsSettingsInTheHomeWhenTheVariableIsEmptyOrRelative) {
  for (const char* const value : {"", "config"}) {
    const testkit::ScopedVariable variable("XDG_CONFIG_HOME", value);
    ASSERT_EQ(settingsFile(), phone.folders().home() / ".config/kivo/sms-watcher.toml");
    writeSettings(R"(senders = ["HomeBank"])");
    startModemManager();
    startWatcher();
    receive(message("1", value, "MyBank"));
    receive(message("2", std::string("Home ") + value, "HomeBank"));
    EXPECT_TRUE(testkit::eventually([&] {
      const auto texts = handedOn();
      return !texts.empty() && texts.back() == std::string("Home ") + value;
    }));
    endWatcher();
    endModemManager();
  }
  EXPECT_THAT(handedOn(), ElementsAre("Home ", "Home config"));
}

TEST_F(AnSmsWatcher, WaitsForAllPartsOfAMessage) {
  startModemManager();
  startWatcher();
  receive(message("1", "Paid", "MyBank", R"("State":2)"));
  EXPECT_THAT(handedOnBeforeOneMore(), IsEmpty());
  modem(R"("do":"change","path":"1","properties":{"Text":"Paid 150 at Cafe","State":3})");
  EXPECT_THAT(waitForHandedOn(2), ElementsAre("One more", "Paid 150 at Cafe"));
}

TEST_F(AnSmsWatcher, SkipsDraftsReportsAndSentMessages) {
  startModemManager({
      message("1", "Draft", "MyBank", R"("State":1,"PduType":2)"),
      message("2", "Sending", "MyBank", R"("State":4,"PduType":2)"),
      message("3", "Sent", "MyBank", R"("State":5,"PduType":2)"),
      message("4", "Report", "MyBank", R"("PduType":3)"),
      message("5", "", "MyBank", R"("Data":[1,2,254])"),
      message("6", "Cancelled", "MyBank", R"("PduType":34)"),
      message("7", "Of no known kind", "MyBank", R"("PduType":0)"),
      message("8", "Stored", "MyBank", R"("State":1)"),
      message("9", "By CDMA", "MyBank", R"("PduType":32)"),
  });
  startWatcher();
  EXPECT_THAT(handedOnBeforeOneMore(), ElementsAre("By CDMA"));
}

TEST_F(AnSmsWatcher, SkipsMalformedMessages) {
  startModemManager({
      message("1", "State", "MyBank", R"("State":"three")"),
      message("2", "Kind", "MyBank", R"("PduType":true)"),
      message("3", "Text", "MyBank", R"("Text":7)"),
      message("4", "Number", "MyBank", R"("Number":7)"),
      R"("path":"5")",
      R"("path":"6","State":3)",
      message("7", "Time", "MyBank", R"("Timestamp":7)"),
      message("8", "No time", "MyBank", R"("Timestamp":"")"),
      message("9", "Odd time", "MyBank", R"("Timestamp":"yesterday")"),
  });
  startWatcher();
  modem(R"("do":"announce","path":"77")");
  receive(message("10", "Sound"));
  EXPECT_THAT(waitForHandedOn(4),
              testing::UnorderedElementsAre("Time", "No time", "Odd time", "Sound"));
}

TEST_F(AnSmsWatcher, SkipsMessagesFromADayBeforeTheirSenderWasNamed) {
  startModemManager({message("1", "Last year", "MyBank", sent(24h * 365)),
                     message("2", "Two days ago", "MyBank", sent(48h)),
                     message("3", "This morning", "MyBank", sent(6h))});
  startWatcher();
  EXPECT_THAT(handedOnBeforeOneMore(), ElementsAre("This morning"));
  // Messages that a modem announces when it is switched on are as old.
  receive(message("4", "Three days ago", "MyBank", sent(72h)));
  receive(message("5", "Now"));
  EXPECT_THAT(waitForHandedOn(3), ElementsAre("This morning", "One more", "Now"));
  EXPECT_EQ(endWatcher().errors,
            "kivo-sms-watcher: handing on the messages of 1 sender\n"
            "kivo-sms-watcher: messages that were sent more than a day before their sender was "
            "named stay where they are\n");
}

TEST_F(AnSmsWatcher, HandsOnASignalledMessageWhileListingFails) {
  startModemManager();
  modem(
      R"("do":"fault","method":"List","fault":"org.freedesktop.ModemManager1.Error.Core.WrongState")");
  startWatcher();
  receive(message("1", "Paid 150"));
  EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
}

TEST_F(AnSmsWatcher, SkipsOldMessagesOfASenderThatIsNamedLater) {
  startModemManager({message("1", "Two days ago", "Other", sent(48h))});
  startWatcher();
  EXPECT_THAT(handedOnBeforeOneMore(), IsEmpty());
  EXPECT_EQ(watch({"add", "Other"}).status, 0);
  receive(message("2", "Now", "Other"));
  EXPECT_THAT(waitForHandedOn(2), ElementsAre("One more", "Now"));
}

TEST_F(AnSmsWatcher, HandsOnHundredsOfMessagesInOrderOfTime) {
  constexpr int count = 300;
  std::vector<std::string> messages;
  std::vector<std::string> expected;
  for (int i = 0; i < count; ++i) {
    const int turn = (i * 7) % count;  // not in the order of their paths
    messages.push_back(message(std::to_string(i), "Paid " + std::to_string(turn), "MyBank",
                               sent(std::chrono::minutes(count - turn))));
    expected.push_back("Paid " + std::to_string(i));
  }
  startModemManager(messages);
  startWatcher();
  EXPECT_EQ(waitForHandedOn(count), expected);
}

TEST_F(AnSmsWatcher, PerformsOneMessageAtATime) {
  intentsDo("slow");
  startModemManager(
      {message("1", "One", "MyBank", sent(3s)), message("2", "Two", "MyBank", sent(2s))});
  startWatcher();
  ASSERT_FALSE(waitForHandedOn(1).empty());
  receive(message("3", "Three"));
  EXPECT_THAT(waitForHandedOn(3), ElementsAre("One", "Two", "Three"));
}

TEST_F(AnSmsWatcher, OnlyReadsMessages) {
  startModemManager({message("1", "Paid 150")});
  startWatcher();
  EXPECT_THAT(handedOnBeforeOneMore(), ElementsAre("Paid 150"));
  const std::string calls = modemCalls();
  EXPECT_THAT(calls, HasSubstr("List 0"));
  EXPECT_THAT(calls, HasSubstr("GetAll 1"));
  EXPECT_THAT(calls, Not(HasSubstr("Delete")));
}

TEST_F(AnSmsWatcher, HoldsMessagesUntilTheUserSignsIn) {
  SharedStore store = SharedStore::open(appGroup).value();
  store.writeText(StoreKeys::userId, "");
  ASSERT_TRUE(store.synchronize());
  startModemManager({message("1", "Paid 150", "MyBank", sent(5s))});
  startWatcher();
  receive(message("2", "Paid 151"));
  std::this_thread::sleep_for(500ms);
  EXPECT_THAT(handedOn(), IsEmpty());
  signIn("http://127.0.0.1:9");
  EXPECT_THAT(waitForHandedOn(2), ElementsAre("Paid 150", "Paid 151"));
  EXPECT_EQ(
      endWatcher().errors,
      "kivo-sms-watcher: handing on the messages of 1 sender\n"
      "kivo-sms-watcher: not signed in, so messages wait; sign in with: kivo-phone sign-in\n");
}

}  // namespace
}  // namespace kivo
