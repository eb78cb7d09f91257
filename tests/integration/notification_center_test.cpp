// The real program kivo-notification-center, started by a private bus.
#include <csignal>

#include "a_notification_center.h"
#include "demo/notification_display.h"
#include "platform/foundation/user_defaults.h"

namespace kivo {
namespace {

constexpr const char* bundle = notifyingBundle;
constexpr const char* link = linkedContent;
using linux_platform::ProgramResult;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

TEST_F(ANotificationCenter, ReportsNotDeterminedForANewBundle) {
  EXPECT_EQ(status("app.never.set"), "(0,)\n");
}

TEST_F(ANotificationCenter, KeepsThePermissionOfEachBundleAcrossARestart) {
  EXPECT_EQ(phone.callCenter("SetAuthorizationStatus", {bundle, "2"}).output, "()\n");
  EXPECT_EQ(phone.callCenter("SetAuthorizationStatus", {"app.other", "1"}).output, "()\n");
  phone.killCenter();
  EXPECT_EQ(status(bundle), "(2,)\n");
  EXPECT_EQ(status("app.other"), "(1,)\n");
}

TEST_F(ANotificationCenter, RefusesAnUnknownStatus) {
  for (const char* const number : {"5", "-1", "2147483647"}) {
    const ProgramResult result = phone.callCenter("SetAuthorizationStatus", {bundle, "--", number});
    EXPECT_THAT(result.errors, HasSubstr("InvalidArgs")) << number;
  }
  EXPECT_EQ(status(bundle), "(0,)\n");
}

TEST_F(ANotificationCenter, ShowsARequestASecondLaterAfterItsSenderExits) {
  NotificationDisplay display(phone.address());
  phone.startCenter();
  const auto before = std::chrono::steady_clock::now();
  ASSERT_EQ(add("one", link, "1.0").status, 0);
  const auto after = std::chrono::steady_clock::now();

  const auto shown = display.waitForShown(1, 10s);
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_GE(shown[0].shownAt - before, 1s);
  EXPECT_LE(shown[0].shownAt - after, 2s);
}

TEST_F(ANotificationCenter, SendsNameTitleBodyAndActionToTheDesktop) {
  NotificationDisplay display(phone.address(), {"body", "actions"});
  ASSERT_EQ(add("one").status, 0);
  const auto shown = display.waitForShown(1, 10s);
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].appName, "Kivo");
  EXPECT_EQ(shown[0].replaces, 0U);
  EXPECT_EQ(shown[0].icon, "app.kivo.expenses");
  EXPECT_EQ(shown[0].summary, "Kept");
  EXPECT_EQ(shown[0].body, "a < b & c > d");
  EXPECT_THAT(shown[0].actions, ElementsAre("default", "Open"));
  EXPECT_THAT(shown[0].hints, ElementsAre(Pair("desktop-entry", "app.kivo.expenses")));
  EXPECT_EQ(shown[0].expiresAfter, -1);
}

TEST_F(ANotificationCenter, EscapesOnlyTheBodyForAServerWithBodyMarkup) {
  NotificationDisplay display(phone.address(), {"body", "body-markup"});
  ASSERT_EQ(add("one", "{'title': <'<b>&</b>'>, 'body': <'a < b & c > d &amp; \"'>}").status, 0);
  const auto shown = display.waitForShown(1, 10s);
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].summary, "<b>&</b>");
  EXPECT_EQ(shown[0].body, "a &lt; b &amp; c &gt; d &amp;amp; \"");
}

TEST_F(ANotificationCenter, SendsASoundOnlyToAServerWithSound) {
  NotificationDisplay display(phone.address(), {"sound"});
  ASSERT_EQ(add("one").status, 0);
  const auto shown = display.waitForShown(1, 10s);
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_THAT(shown[0].hints, UnorderedElementsAre(Pair("desktop-entry", "app.kivo.expenses"),
                                                   Pair("sound-name", "message-new-instant")));
}

TEST_F(ANotificationCenter, ShowsEmptyTexts) {
  NotificationDisplay display(phone.address());
  ASSERT_EQ(add("one", "{'title': <''>, 'body': <''>}").status, 0);
  const auto shown = display.waitForShown(1, 10s);
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].summary, "");
  EXPECT_EQ(shown[0].body, "");
  EXPECT_THAT(shown[0].actions, IsEmpty());
}

TEST_F(ANotificationCenter, ShowsAPendingRequestOnceAfterAKill) {
  NotificationDisplay display(phone.address());
  ASSERT_EQ(add("one", link, "1.0").status, 0);
  phone.killCenter();
  std::this_thread::sleep_for(1200ms);  // until it is overdue
  EXPECT_THAT(display.shown(), IsEmpty());

  const auto restart = std::chrono::steady_clock::now();
  phone.startCenter();
  const auto shown = display.waitForShown(1, 10s);
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_LE(shown[0].shownAt - restart, 900ms);
  EXPECT_TRUE(testkit::eventually([&] { return pending() == "(@as [],)\n"; }));
  phone.killCenter();
  phone.startCenter();
  EXPECT_EQ(display.waitForShown(2, 500ms).size(), 1U);
}

TEST_F(ANotificationCenter, WaitsForANotificationServerToStart) {
  ASSERT_EQ(add("one").status, 0);
  ASSERT_EQ(add("two").status, 0);
  std::this_thread::sleep_for(200ms);
  EXPECT_EQ(pending(), "(['one', 'two'],)\n");

  NotificationDisplay display(phone.address());
  EXPECT_EQ(display.waitForShown(2, 10s).size(), 2U);
  EXPECT_TRUE(testkit::eventually([&] { return pending() == "(@as [],)\n"; }));
}

TEST_F(ANotificationCenter, ShowsFiveAndACountWhenAServerStartsAfterAFlood) {
  for (int number = 1; number <= 20; ++number) {
    ASSERT_EQ(add(std::to_string(number), "{'title': <'" + std::to_string(number) + "'>}").status,
              0);
  }
  NotificationDisplay display(phone.address());
  ASSERT_TRUE(testkit::eventually([&] { return pending() == "(@as [],)\n"; }));
  std::vector<std::string> summaries;
  for (const auto& one : display.shown()) summaries.push_back(one.summary);
  EXPECT_THAT(summaries, ElementsAre("16", "17", "18", "19", "20", "15 earlier notifications"));
}

TEST_F(ANotificationCenter, ShowsADuplicateIdentifierOnce) {
  NotificationDisplay display(phone.address());
  ASSERT_EQ(add("one", link, "0.3").status, 0);
  ASSERT_EQ(add("one", link, "0.3").status, 0);
  ASSERT_EQ(display.waitForShown(1, 10s).size(), 1U);
  ASSERT_TRUE(testkit::eventually([&] { return pending() == "(@as [],)\n"; }));
  ASSERT_EQ(add("one").status, 0);
  phone.killCenter();
  ASSERT_EQ(add("one").status, 0);
  EXPECT_EQ(display.waitForShown(2, 500ms).size(), 1U);
}

TEST_F(ANotificationCenter, RemovesAShownRequestFromTheDisk) {
  NotificationDisplay display(phone.address());
  ASSERT_EQ(add("one").status, 0);
  ASSERT_EQ(display.waitForShown(1, 10s).size(), 1U);
  const auto onDisk = [] {
    const auto suite = platform::UserDefaults::initWithSuiteName("app.kivo.NotificationCenter");
    return suite->stringForKey("pendingNotifications").value_or("none");
  };
  EXPECT_TRUE(testkit::eventually([&] { return onDisk() == "[]"; })) << onDisk();
}

TEST_F(ANotificationCenter, OpensTheDeepLinkOfAClickedNotification) {
  NotificationDisplay display(phone.address());
  ASSERT_EQ(add("one").status, 0);
  const auto shown = display.waitForShown(1, 10s);
  ASSERT_EQ(shown.size(), 1U);
  // Its number reaches the center just after the display has it.
  ASSERT_TRUE(testkit::eventually([&] { return pending() == "(@as [],)\n"; }));
  display.invokeDefaultAction(99);
  display.invokeDefaultAction(shown[0].id);
  EXPECT_THAT(phone.openedLinks(1), ElementsAre("kivo-expenses://"));
}

TEST_F(ANotificationCenter, DoesNotOpenADeepLinkThatIsAnOptionOrAFile) {
  NotificationDisplay display(phone.address());
  ASSERT_EQ(add("one", "{'userInfo': <{'deepLink': '--manual'}>}").status, 0);
  ASSERT_EQ(add("two", "{'userInfo': <{'deepLink': '/etc/passwd'}>}").status, 0);
  ASSERT_EQ(add("three").status, 0);
  ASSERT_EQ(display.waitForShown(3, 10s).size(), 3U);
  ASSERT_TRUE(testkit::eventually([&] { return pending() == "(@as [],)\n"; }));
  for (const std::uint32_t id : {1U, 2U, 3U}) display.invokeDefaultAction(id);
  EXPECT_THAT(phone.openedLinks(1), ElementsAre("kivo-expenses://"));
}

TEST_F(ANotificationCenter, RefusesUnknownContent) {
  for (const char* const content :
       {"{'subtitle': <'x'>}", "{'title': <1>}", "{'body': <['x']>}", "{'sound': <'loud'>}",
        "{'sound': <true>}", "{'userInfo': <{'badge': 1}>}", "{'userInfo': <'deepLink'>}"}) {
    EXPECT_THAT(add("one", content).errors, HasSubstr("org.freedesktop.DBus.Error.InvalidArgs"))
        << content;
  }
  EXPECT_EQ(pending(), "(@as [],)\n");
}

TEST_F(ANotificationCenter, RefusesAnInvalidTrigger) {
  for (const char* const interval : {"-1.0", "-inf", "inf", "nan", "1e300"}) {
    EXPECT_THAT(add("one", link, interval).errors, HasSubstr("InvalidArgs")) << interval;
  }
  EXPECT_THAT(add("one", link, "1.0", "true").errors, HasSubstr("InvalidArgs"));
  EXPECT_EQ(pending(), "(@as [],)\n");
}

TEST_F(ANotificationCenter, RefusesRequestsOfADeniedBundle) {
  phone.callCenter("SetAuthorizationStatus", {bundle, "1"});
  EXPECT_THAT(add("one").errors, HasSubstr("org.freedesktop.DBus.Error.AccessDenied"));
  EXPECT_EQ(pending(), "(@as [],)\n");
}

TEST_F(ANotificationCenter, ShowsOnAThirdPartyServer) {
  linux_platform::ChildProcess server(
      {.program = "/usr/bin/python3",
       .arguments = {"-u", "-m", "dbusmock", "--template", "notification_daemon"}});
  ASSERT_TRUE(testkit::eventually(
      [&] { return phone.processOf("org.freedesktop.Notifications").has_value(); }));
  ASSERT_EQ(add("one").status, 0);
  const auto notified = [&] {
    return server.outputSoFar().find("Notify \"Kivo\" 0 \"app.kivo.expenses\" \"Kept\"") !=
           std::string::npos;
  };
  EXPECT_TRUE(testkit::eventually(notified)) << server.outputSoFar();
  EXPECT_TRUE(testkit::eventually([&] { return pending() == "(@as [],)\n"; }));
}

TEST_F(ANotificationCenter, EndsWithTheBus) {
  const pid_t center = phone.startCenter();
  phone.endBus();
  EXPECT_TRUE(testkit::PrivatePhone::hasEnded(center));
}

TEST_F(ANotificationCenter, EndsWhenTerminated) {
  const pid_t center = phone.startCenter();
  kill(center, SIGTERM);
  EXPECT_TRUE(testkit::PrivatePhone::hasEnded(center));
}

class TheCenterProgram : public testing::Test {
 protected:
  static ProgramResult run(std::vector<std::string> arguments = {}) {
    return linux_platform::runProgram(
        {.program = linux_platform::programFolder() / "kivo-notification-center",
         .arguments = std::move(arguments)},
        10s);
  }
};

TEST_F(TheCenterProgram, ExitsWhenAnotherOwnsTheBusName) {
  testkit::PrivatePhone phone;
  phone.startCenter();
  const ProgramResult second = run();
  EXPECT_EQ(second.status, 1);
  EXPECT_THAT(second.errors, HasSubstr("another program is app.kivo.NotificationCenter\n"));
}

TEST_F(TheCenterProgram, ExitsWithoutABus) {
  const testkit::PrivateFolders folders;
  const ProgramResult result = run();
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "kivo-notification-center: there is no session bus\n");
}

TEST_F(TheCenterProgram, ExitsWhenItsStoreCannotBeOpened) {
  testkit::PrivatePhone phone;
  const testkit::ScopedVariable nowhere("XDG_DATA_HOME", "/dev/null/data");
  EXPECT_EQ(run().status, 1);
}

TEST_F(TheCenterProgram, PrintsHelpAndVersion) {
  EXPECT_THAT(run({"--help"}).output, HasSubstr("Usage: kivo-notification-center"));
  EXPECT_THAT(run({"--version"}).output, testing::StartsWith("kivo-notification-center "));
  EXPECT_EQ(run({"--unknown"}).status, 64);
}

}  // namespace
}  // namespace kivo
