// The watcher across restarts and failures: no message is lost, and none is handed on twice unless
// an answer could not be recorded.
#include <csignal>
#include <fstream>
#include <iterator>

#include <sys/stat.h>

#include "testkit/raw_store.h"
#include "watched_phone.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testkit::eventually;
using testkit::message;
using testkit::sent;

class AHandedOnMessage : public testkit::WatchedPhone {
 protected:
  // It stays the same across restarts of its readers.
  const std::string paid = message("1", "Paid 150");

  AHandedOnMessage() {
    startIntents();
    startModemManager({paid});
    startWatcher();
    EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
  }
};

TEST_F(AHandedOnMessage, IsNotHandedOnAgainByTheNextWatcher) {
  EXPECT_EQ(endWatcher().status, 0);
  startWatcher();
  EXPECT_THAT(handedOnBeforeOneMore(), ElementsAre("Paid 150"));
}

TEST_F(AHandedOnMessage, IsNotHandedOnAgainAfterAKill) {
  receive(message("2", "Paid 151"));
  EXPECT_THAT(waitForHandedOn(2), ElementsAre("Paid 150", "Paid 151"));
  // The next message is handed on only after the last answer was recorded.
  EXPECT_THAT(handedOnBeforeOneMore(), ElementsAre("Paid 150", "Paid 151"));
  killWatcher();
  startWatcher();
  receive(message("3", "Last"));
  ASSERT_TRUE(eventually([&] { return testing::Value(handedOn(), Contains("Last")); }, 60s));
  auto texts = handedOn();
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "Paid 150"), 1);
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "Paid 151"), 1);
}

TEST_F(AHandedOnMessage, IsRecognisedAfterModemManagerReusesItsPath) {
  endModemManager();
  // Another message has its path now, and its own path is new.
  startModemManager({message("1", "Paid 151"), R"("path":"7",)" + paid.substr(paid.find(',') + 1)});
  EXPECT_THAT(waitForHandedOn(2), ElementsAre("Paid 150", "Paid 151"));
  EXPECT_THAT(handedOnBeforeOneMore(), ElementsAre("Paid 150", "Paid 151"));
}

TEST_F(AHandedOnMessage, IsRecognisedWhenItsTimeHasAnotherFormat) {
  endModemManager();
  std::string otherwise = paid;
  otherwise.replace(otherwise.rfind("Z\""), 2, "+00\"");
  startModemManager({otherwise});
  EXPECT_THAT(handedOnBeforeOneMore(), ElementsAre("Paid 150"));
}

TEST_F(AHandedOnMessage, IsRecognisedWhenItsModemComesBack) {
  modem(R"("do":"remove_modem","modem":"0")");
  modem(R"("do":"add_modem","modem":"0","its_messages":[{)" + paid + "},{" +
        message("2", "Paid 151") + "}]");
  EXPECT_THAT(waitForHandedOn(2), ElementsAre("Paid 150", "Paid 151"));
  EXPECT_THAT(handedOnBeforeOneMore(), ElementsAre("Paid 150", "Paid 151"));
}

TEST_F(AHandedOnMessage, IsRecognisedWhenItIsAnnouncedTwice) {
  modem(R"("do":"announce","path":"1")");
  modem(R"("do":"change","path":"1","properties":{"State":3})");
  EXPECT_THAT(handedOnBeforeOneMore(), ElementsAre("Paid 150"));
}

TEST_F(AHandedOnMessage, IsNotConfusedWithTheSameTextAtAnotherTime) {
  receive(message("2", "Paid 150", "MyBank", sent(30s)));
  EXPECT_THAT(waitForHandedOn(2), ElementsAre("Paid 150", "Paid 150"));
}

TEST_F(AHandedOnMessage, IsNotInTheRecordOrTheLog) {
  EXPECT_THAT(handedOnBeforeOneMore(), ElementsAre("Paid 150"));
  intentsDo("fail");
  receive(message("2", "MARKTEXT"));
  EXPECT_TRUE(eventually([&] { return testing::Value(handedOn(), Contains("MARKTEXT")); }, 60s));
  const auto result = endWatcher();
  EXPECT_EQ(result.output, "");
  for (const char* const secret : {"Paid", "MARK", "MyBank"}) {
    EXPECT_THAT(result.errors, Not(HasSubstr(secret)));
  }
  int files = 0;
  const auto folder = phone.folders().dataHome() / "app.kivo.SmsWatcher";
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    ++files;
    struct stat found {};
    ASSERT_EQ(stat(entry.path().c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777, 0600U) << entry.path();
    std::ifstream in(entry.path(), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    for (const char* const secret : {"Paid", "MARK", "MyBank"}) {
      EXPECT_THAT(bytes, Not(HasSubstr(secret))) << entry.path();
    }
  }
  EXPECT_GT(files, 0);
}

class AnUnansweredMessage : public testkit::WatchedPhone {
 protected:
  AnUnansweredMessage() { startModemManager({message("1", "Paid 150")}); }
};

TEST_F(AnUnansweredMessage, IsRetriedWhenTheIntentsFail) {
  startIntents();
  intentsDo("fail");
  startWatcher();
  EXPECT_THAT(waitForHandedOn(3), Contains("Paid 150").Times(testing::Ge(3)));
  intentsDo("answer");
  // A retry would come within 200 ms.
  EXPECT_TRUE(eventually([&] {
    const std::size_t tried = handedOn().size();
    std::this_thread::sleep_for(600ms);
    return handedOn().size() == tried;
  }));
  EXPECT_EQ(endWatcher().errors,
            "kivo-sms-watcher: handing on the messages of 1 sender\n"
            "kivo-sms-watcher: a message could not be handed on and is tried again "
            "(app.kivo.Intents1.Error.UnknownIntent)\n");
}

TEST_F(AnUnansweredMessage, IsRetriedWhenTheIntentsHang) {
  startIntents();
  intentsDo("hang");
  startWatcher(500ms);
  ASSERT_FALSE(waitForHandedOn(1).empty());
  intentsDo("answer");
  // The recorder sees the second call before the first has ended.
  EXPECT_TRUE(eventually([&] { return handedOn().size() >= 2; }, 60s));
  EXPECT_EQ(handedOn()[0], "Paid 150");
}

TEST_F(AnUnansweredMessage, IsRetriedWhenTheIntentsDie) {
  startIntents();
  intentsDo("die");
  startWatcher();
  ASSERT_FALSE(waitForHandedOn(1).empty());
  intentsDo("answer");
  startIntents();
  EXPECT_TRUE(eventually([&] { return handedOn().size() >= 2; }, 60s));
}

TEST_F(AnUnansweredMessage, WaitsForTheIntentsToStart) {
  startWatcher();
  receive(message("2", "Paid 151"));
  std::this_thread::sleep_for(500ms);
  startIntents();
  EXPECT_THAT(waitForHandedOn(2), testing::UnorderedElementsAre("Paid 150", "Paid 151"));
}

TEST_F(AnUnansweredMessage, DoesNotDelayLaterMessages) {
  startIntents();
  intentsDo("fail");
  startWatcher();
  ASSERT_FALSE(waitForHandedOn(1).empty());
  receive(message("2", "Paid 151"));
  EXPECT_TRUE(eventually([&] { return testing::Value(handedOn(), Contains("Paid 151")); }, 60s));
}

TEST_F(AnUnansweredMessage, IsHandedOnByTheNextWatcher) {
  startIntents();
  intentsDo("hang");
  startWatcher();
  EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
  killWatcher();
  intentsDo("answer");
  startWatcher();
  EXPECT_EQ(waitForHandedOn(2).size(), 2U);
}

TEST_F(AnUnansweredMessage, IsRetriedWhenItsAnswerCouldNotBeRecorded) {
  startIntents();
  startWatcher();
  handedOnBeforeOneMore();
  {
    testkit::RawStore inTheWay(phone.folders().dataHome() / "app.kivo.SmsWatcher" /
                               "defaults.sqlite3");
    const auto locked = [&] {
      try {
        inTheWay.run("BEGIN IMMEDIATE");
        return true;
      } catch (const std::runtime_error&) {
        return false;  // the watcher is writing
      }
    };
    ASSERT_TRUE(eventually(locked));
    receive(message("2", "Paid 151"));
    ASSERT_TRUE(
        eventually([&] { return handedOn().back() == "Paid 151" && lastIsAnswered(); }, 60s));
    killWatcher();  // it waits for the lock to record the answer
  }
  startWatcher();
  EXPECT_TRUE(
      eventually([&] { return testing::Value(handedOn(), Contains("Paid 151").Times(2)); }, 60s));
}

TEST_F(AnUnansweredMessage, IsRetriedAfterItsDeletionFromTheModem) {
  startIntents();
  intentsDo("fail");
  startWatcher();
  ASSERT_FALSE(waitForHandedOn(1).empty());
  endModemManager();
  const std::size_t tried = handedOn().size();
  intentsDo("answer");
  EXPECT_GT(waitForHandedOn(tried + 1).size(), tried);
}

class AWatcherThatCatchesUp : public testkit::WatchedPhone {
 protected:
  AWatcherThatCatchesUp() { startIntents(); }
};

TEST_F(AWatcherThatCatchesUp, ReadsMessagesThatArrivedWhileItWasStopped) {
  startModemManager({message("1", "Paid 150")});
  startWatcher();
  EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
  endWatcher();
  receive(message("2", "Paid 151"));
  receive(message("3", "Dinner?", "+201001234567"));
  startWatcher();
  EXPECT_THAT(handedOnBeforeOneMore(), ElementsAre("Paid 150", "Paid 151"));
}

TEST_F(AWatcherThatCatchesUp, HandsOnMessagesOfAModemManagerThatStartsLater) {
  startWatcher();
  startModemManager({message("1", "Paid 150")});
  EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
  endModemManager();
  startModemManager({message("1", "Paid 151")});
  EXPECT_THAT(waitForHandedOn(2), ElementsAre("Paid 150", "Paid 151"));
}

TEST_F(AWatcherThatCatchesUp, HandsOnMessagesOfAModemThatIsPluggedInLater) {
  startModemManager();
  startWatcher();
  modem(R"("do":"add_modem","modem":"1","its_messages":[{)" + message("5", "Paid 150") + "}]");
  EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
  modem(R"("do":"receive","modem":"1","message":{)" + message("6", "Paid 151") + "}");
  EXPECT_THAT(waitForHandedOn(2), ElementsAre("Paid 150", "Paid 151"));
}

class AFailingModemManager : public testkit::WatchedPhone,
                             public testing::WithParamInterface<const char*> {
 protected:
  AFailingModemManager() { startIntents(); }
  void fault(const std::string& kind) {
    modem(std::string(R"("do":"fault","method":")") + GetParam() + R"(","fault":")" + kind + "\"");
  }
};

TEST_P(AFailingModemManager, IsAskedAgainAfterAnError) {
  startModemManager({message("1", "Paid 150")});
  fault("org.freedesktop.ModemManager1.Error.Core.WrongState");
  startWatcher();
  const std::string call = std::string(GetParam()) + " ";
  ASSERT_TRUE(eventually([&] { return modemCalls().find(call) != std::string::npos; }));
  fault("");
  EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
}

TEST_P(AFailingModemManager, IsAskedAgainAfterATimeout) {
  startModemManager({message("1", "Paid 150")});
  fault("hang");
  startWatcher(30s, 300ms);
  const std::string call = std::string(GetParam()) + " ";
  ASSERT_TRUE(eventually([&] { return modemCalls().find(call) != std::string::npos; }));
  fault("");
  EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
}

INSTANTIATE_TEST_SUITE_P(, AFailingModemManager,
                         testing::Values("GetManagedObjects", "List", "GetAll"),
                         [](const auto& method) { return std::string(method.param); });

}  // namespace
}  // namespace kivo
