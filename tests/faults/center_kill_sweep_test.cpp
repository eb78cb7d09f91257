// The notification center, killed at each of its system calls, shows every request that it
// accepted.
#include <algorithm>
#include <csignal>
#include <iostream>
#include <set>

#include <gmock/gmock.h>

#include "demo/notification_display.h"
#include "faulted_program.h"
#include "platform/linux/bus/notification_center_interface.h"
#include "testkit/private_phone.h"
#include "testkit/raw_store.h"

namespace kivo {
namespace {

using testkit::eventually;
using testkit::Fault;

class AKilledNotificationCenter : public testing::Test {
 protected:
  void SetUp() override {
    if (const std::string reason = testkit::whyNoFaults(); !reason.empty()) GTEST_SKIP() << reason;
    display_.emplace(phone_.address());
  }

  /// Kills the center at one call of that name after the other until one ends when terminated, each
  /// with a
  /// new store.
  void sweepCall(Fault fault, testkit::CallNumbers& numbers) {
    for (fault.number = numbers.first(); fault.number < 1000; fault.number += numbers.step()) {
      SCOPED_TRACE(testkit::wordsFor(fault));
      const int status = runWith(fault);
      expectAllShown();
      if (HasFailure() || status == 0) return;
      EXPECT_EQ(status, 128 + SIGKILL);
      ++kills_;
    }
    ADD_FAILURE() << "no center was left alone";
  }

  int kills_ = 0;
  std::size_t shownTwice_ = 0;
  std::size_t taken_ = 0;

 private:
  /// A center from its start, through three requests and their notifications, to its end.
  int runWith(const Fault& fault) {
    phone_.killCenter();
    std::filesystem::remove_all(storeFile().parent_path());
    acknowledged_.clear();
    linux_platform::ChildProcess center(testkit::withFault(
        fault, {.program = linux_platform::programFolder() / "kivo-notification-center"},
        storeFile()));
    const auto ended = [&] { return kill(center.id(), 0) != 0; };
    std::optional<pid_t> process;
    eventually([&] {
      return ended() || (process = phone_.processOf(
                             linux_platform::notification_center_interface::object.service));
    });
    for (int request = 0; request < 3 && !ended(); ++request) add();
    eventually([&] { return ended() || (missing().empty() && noneWaits()); });
    if (process) kill(*process, SIGTERM);
    return center.wait().status;
  }

  void add() {
    const std::string name = "request-" + std::to_string(++requests_);
    const std::string content = "{'title': <'" + name + "'>, 'body': <'b'>}";
    const auto answer = phone_.callCenter(
        "Add", {"app.kivo.expenses.intents", name, content, "--", "0.0", "false"});
    if (answer.status == 0) acknowledged_.insert(name);
  }

  bool noneWaits() {
    return phone_.callCenter("Pending", {"app.kivo.expenses.intents"}).output == "(@as [],)\n";
  }

  std::set<std::string> missing() {
    std::set<std::string> names = acknowledged_;
    for (const auto& shown : display_->shown()) names.erase(shown.summary);
    return names;
  }

  void expectAllShown() {
    if (phone_.processOf(linux_platform::notification_center_interface::object.service))
      phone_.killCenter();
    if (std::filesystem::exists(storeFile())) {
      EXPECT_EQ(testkit::RawStore(storeFile()).run("PRAGMA integrity_check"), "ok\n");
    }
    phone_.startCenter();
    EXPECT_TRUE(eventually([&] { return missing().empty(); })) << testing::PrintToString(missing());
    taken_ += acknowledged_.size();
    for (const std::string& name : acknowledged_) {
      const auto shown = display_->shown();
      const auto times = std::count_if(shown.begin(), shown.end(),
                                       [&](const auto& one) { return one.summary == name; });
      shownTwice_ += times > 1 ? 1 : 0;
    }
  }

  [[nodiscard]] std::filesystem::path storeFile() {
    return phone_.folders().dataHome() / "app.kivo.NotificationCenter" / "defaults.sqlite3";
  }

  testkit::PrivatePhone phone_;
  std::optional<NotificationDisplay> display_;
  std::set<std::string> acknowledged_;
  int requests_ = 0;
};

TEST_F(AKilledNotificationCenter, ShowsEachAcceptedRequestAfterARestart) {
  testkit::CallNumbers numbers;
  for (const char* const call : testkit::sweptCalls) {
    sweepCall({.call = call, .effect = "signal=SIGKILL"}, numbers);
  }
  std::cout << "killed " << kills_ << " centers; of " << taken_
            << " requests taken, shown again: " << shownTwice_ << "\n";
  EXPECT_GE(kills_, testkit::isLongForm() ? 100 : 1);
  EXPECT_GT(taken_, 0U);
}

}  // namespace
}  // namespace kivo
