// Signals and names that another user of the machine forges, on a bus with the usual policy.
#include <unistd.h>

#include "watched_phone.h"

namespace kivo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testkit::message;

class AnotherUser : public testkit::WatchedPhone {
 protected:
  void SetUp() override {
    if (getuid() != 0) GTEST_SKIP() << "only root can start a program as another user";
    startIntents();
  }

  // Has the other user send these to all programs on the system bus, and waits until it has.
  void sends(const std::vector<std::string>& forgeries) {
    other = startClient("other_user.py", forgeries);
    ASSERT_TRUE(testkit::eventually([this] { return other->outputSoFar().ends_with('\n'); }));
    ASSERT_THAT(other->outputSoFar(), StartsWith("sent\n"));
  }
  void expectNoCallArrived() { EXPECT_EQ(other->outputSoFar(), "sent\n"); }

  std::unique_ptr<linux_platform::ChildProcess> other;
};

TEST_F(AnotherUser, CannotForgeTheEndOfModemManager) {
  startModemManager();
  startWatcher();
  sends({"gone"});
  receive(message("1", "Paid 150"));
  EXPECT_THAT(waitForHandedOn(1), ElementsAre("Paid 150"));
}

TEST_F(AnotherUser, CannotImpersonateModemManager) {
  startModemManager();
  startWatcher();
  sends({"owner", "message"});
  EXPECT_THAT(handedOnBeforeOneMore(), IsEmpty());
  expectNoCallArrived();
}

TEST_F(AnotherUser, CannotImpersonateAnAbsentModemManager) {
  startWatcher();
  sends({"owner", "message"});
  startModemManager();
  EXPECT_THAT(handedOnBeforeOneMore(), IsEmpty());
  expectNoCallArrived();
}

TEST_F(AnotherUser, CannotMakeTheWatcherReadMessages) {
  startModemManager();
  startWatcher();
  EXPECT_THAT(handedOnBeforeOneMore(), IsEmpty());
  const std::string before = modemCalls();
  sends({"message"});
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_EQ(modemCalls(), before);
}

TEST_F(AnotherUser, CannotCrashTheWatcherWithAMalformedSignal) {
  startModemManager();
  startWatcher();
  sends({"broken"});
  EXPECT_THAT(handedOnBeforeOneMore(), IsEmpty());
  EXPECT_EQ(endWatcher().status, 0);
}

}  // namespace
}  // namespace kivo
