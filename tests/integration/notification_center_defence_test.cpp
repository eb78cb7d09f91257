// The notification center against other programs of the same user.
#include <fstream>

#include "a_notification_center.h"
#include "demo/notification_display.h"

namespace kivo {
namespace {
using linux_platform::ProgramResult;
using namespace std::chrono_literals;
using testing::ElementsAre;

// In KiB. The sanitizers keep what was freed, and memory of their own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int mostMemory = 2 << 20;
#else
constexpr int mostMemory = 150 << 10;
#endif

class AnAttackedNotificationCenter : public ANotificationCenter {
 protected:
  // Sends the center alone a signal, as any other program of the person can.
  static void forge(const std::string& path, const std::string& signal,
                    const std::vector<std::string>& arguments) {
    std::vector<std::string> all{"--session", "--type=signal", "--dest=app.kivo.NotificationCenter",
                                 path, signal};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const ProgramResult result =
        linux_platform::runProgram({.program = "dbus-send", .arguments = std::move(all)});
    ASSERT_EQ(result.status, 0) << result.errors;
  }
  static void forgeOwnerChange(const std::vector<std::string>& arguments) {
    forge("/org/freedesktop/DBus", "org.freedesktop.DBus.NameOwnerChanged", arguments);
  }
  static void forgeOfDesktop(const std::string& signal, const std::vector<std::string>& arguments) {
    forge("/org/freedesktop/Notifications", "org.freedesktop.Notifications." + signal, arguments);
  }

  // Has another program add requests with bodies of these sizes, 1 and so on; the answers.
  static std::string addOther(std::vector<std::string> sizes) {
    sizes.insert(sizes.begin(), KIVO_CLIENTS_FOLDER "/large_requests.py");
    return linux_platform::runProgram(
               {.program = "/usr/bin/python3", .arguments = std::move(sizes)})
        .output;
  }
  std::string pendingOther() { return phone.callCenter("Pending", {"app.other"}).output; }

  // The most memory that `process` has had so far, in KiB.
  static int peakMemory(pid_t process) {
    std::ifstream in("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(in, line);) {
      if (line.starts_with("VmHWM:")) return std::stoi(line.substr(line.find(':') + 1));
    }
    return 0;
  }
};

TEST_F(AnAttackedNotificationCenter, IgnoresForgedActionSignals) {
  NotificationDisplay display(phone.address());
  ASSERT_EQ(add("one", "{'userInfo': <{'deepLink': 'kivo-expenses://1'}>}").status, 0);
  ASSERT_EQ(add("two", "{'userInfo': <{'deepLink': 'kivo-expenses://2'}>}").status, 0);
  ASSERT_EQ(display.waitForShown(2, 10s).size(), 2U);
  ASSERT_TRUE(testkit::eventually([&] { return pending() == "(@as [],)\n"; }));
  forgeOfDesktop("ActionInvoked", {"uint32:1", "string:default"});
  forgeOfDesktop("NotificationClosed", {"uint32:2", "uint32:2"});
  forgeOwnerChange({"string:org.freedesktop.Notifications", "string::1.1", "string:"});
  display.invokeDefaultAction(2);
  EXPECT_THAT(phone.openedLinks(1), ElementsAre("kivo-expenses://2"));
}

TEST_F(AnAttackedNotificationCenter, SurvivesMalformedSignals) {
  NotificationDisplay display(phone.address());
  const pid_t before = phone.startCenter();
  forgeOfDesktop("ActionInvoked", {"string:one"});
  forgeOfDesktop("NotificationClosed", {});
  forgeOwnerChange({"string:org.freedesktop.Notifications", "uint32:7"});
  EXPECT_EQ(pending(), "(@as [],)\n");
  EXPECT_EQ(phone.startCenter(), before);
}

TEST_F(AnAttackedNotificationCenter, RefusesRequestsAbove2MiBWithoutMuchMemory) {
  const pid_t center = phone.startCenter();
  const std::string large = std::to_string(30 << 20);
  const std::string refused = "org.freedesktop.DBus.Error.LimitsExceeded\n";
  EXPECT_EQ(
      addOther({"2000000", large, large, large, large, large, large, "2097152", "5"}),
      "kept\n" + refused + refused + refused + refused + refused + refused + refused + "kept\n");
  EXPECT_EQ(pendingOther(), "(['1', '9'],)\n");
  EXPECT_EQ(add("one").status, 0);
  EXPECT_EQ(phone.startCenter(), center);
  EXPECT_LT(peakMemory(center), mostMemory);
}

TEST_F(AnAttackedNotificationCenter, RefusesRequestsWhen32MiBArePending) {
  std::string answers;
  for (int number = 1; number <= 16; ++number) answers += "kept\n";
  answers += "org.freedesktop.DBus.Error.LimitsExceeded\n";
  EXPECT_EQ(addOther(std::vector<std::string>(17, "2000000")), answers);
  EXPECT_EQ(add("one").status, 0);
}

TEST_F(AnAttackedNotificationCenter, RefusesThePermissionOfABundleWithALongName) {
  const std::string longest(255, 'b');
  EXPECT_EQ(phone.callCenter("SetAuthorizationStatus", {longest, "2"}).output, "()\n");
  const ProgramResult refused = phone.callCenter("SetAuthorizationStatus", {longest + "b", "2"});
  EXPECT_THAT(refused.errors, testing::HasSubstr("org.freedesktop.DBus.Error.LimitsExceeded: the "
                                                 "name of the bundle is longer than 255 bytes"));
  EXPECT_EQ(status(longest), "(2,)\n");
  EXPECT_EQ(status(longest + "b"), "(0,)\n");
}

TEST_F(AnAttackedNotificationCenter, KeepsThePermissionsOf500Bundles) {
  const std::string said =
      linux_platform::runProgram({.program = "/usr/bin/python3",
                                  .arguments = {KIVO_CLIENTS_FOLDER "/many_bundles.py", "501"}})
          .output;
  EXPECT_EQ(said,
            "500 org.freedesktop.DBus.Error.LimitsExceeded: the permissions of 500 bundles are "
            "stored already\n");
  EXPECT_EQ(phone.callCenter("SetAuthorizationStatus", {"app.number7", "1"}).output, "()\n")
      << "one that is stored can change";
  EXPECT_EQ(status("app.number7"), "(1,)\n");
}

}  // namespace
}  // namespace kivo
