#include "feedback/expense_notifier.h"

#include <ostream>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testkit/task_runner.h"
#include "testkit/test_phone.h"
#include "testkit/written_output.h"

namespace kivo::platform {

void PrintTo(UNAuthorizationStatus status, std::ostream* out) { *out << static_cast<int>(status); }

}  // namespace kivo::platform

namespace kivo {
namespace {

using platform::UNAuthorizationStatus;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using testkit::await;

class AnExpenseNotifier : public ::testing::Test {
 protected:
  std::vector<platform::UNNotificationRequest> handedOver() const {
    return phone_.notifications.requests();
  }

  testkit::TestPhone phone_;
};

TEST_F(AnExpenseNotifier, PassesTitleAndBodyUnchanged) {
  await(ExpenseNotifier::post(" 💸 Expense\tTracked ", "EGP 1 at Café\n(Food) "));
  ASSERT_THAT(handedOver(), SizeIs(1));
  EXPECT_EQ(handedOver()[0].content.title, " 💸 Expense\tTracked ");
  EXPECT_EQ(handedOver()[0].content.body, "EGP 1 at Café\n(Food) ");
}

TEST_F(AnExpenseNotifier, PassesEmptyTexts) {
  await(ExpenseNotifier::post("", ""));
  ASSERT_THAT(handedOver(), SizeIs(1));
  EXPECT_EQ(handedOver()[0].content.title, "");
  EXPECT_EQ(handedOver()[0].content.body, "");
}

TEST_F(AnExpenseNotifier, AddsOnlyTheDeepLink) {
  await(ExpenseNotifier::post("title", "body"));
  const std::map<std::string, std::string> deepLink = {{"deepLink", "kivo-expenses://"}};
  ASSERT_THAT(handedOver(), SizeIs(1));
  EXPECT_EQ(handedOver()[0].content.userInfo, deepLink);
}

TEST_F(AnExpenseNotifier, AddsTheGivenDeepLink) {
  await(ExpenseNotifier::post("title", "body", "kivo-expenses://payment/7"));
  ASSERT_THAT(handedOver(), SizeIs(1));
  EXPECT_EQ(handedOver()[0].content.userInfo.at("deepLink"), "kivo-expenses://payment/7");
}

TEST_F(AnExpenseNotifier, UsesTheDefaultSound) {
  await(ExpenseNotifier::post("title", "body"));
  ASSERT_THAT(handedOver(), SizeIs(1));
  EXPECT_EQ(handedOver()[0].content.sound, platform::UNNotificationSound::defaultSound);
}

TEST_F(AnExpenseNotifier, SchedulesOneNotificationASecondLater) {
  await(ExpenseNotifier::post("title", "body"));
  ASSERT_THAT(handedOver(), SizeIs(1));
  EXPECT_EQ(handedOver()[0].trigger.timeInterval.count(), 1.0);
  EXPECT_EQ(handedOver()[0].trigger.repeats,
            platform::UNTimeIntervalNotificationTrigger::Repeats::no);
}

TEST_F(AnExpenseNotifier, NamesTheRequestByACanonicalUpperCaseUUID) {
  await(ExpenseNotifier::post("title", "body"));
  ASSERT_THAT(handedOver(), SizeIs(1));
  const std::regex canonical("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}");
  EXPECT_TRUE(std::regex_match(handedOver()[0].identifier, canonical));
}

TEST_F(AnExpenseNotifier, PostsEqualTextsTwice) {
  await(ExpenseNotifier::post("title", "body"));
  await(ExpenseNotifier::post("title", "body"));
  ASSERT_THAT(handedOver(), SizeIs(2));
  EXPECT_NE(handedOver()[0].identifier, handedOver()[1].identifier);
}

TEST_F(AnExpenseNotifier, ReadsThePermissionFirst) {
  await(ExpenseNotifier::post("title", "body"));
  EXPECT_THAT(phone_.log.names(), ElementsAre("settings", "notification"));
}

TEST_F(AnExpenseNotifier, ReadsThePermissionEachTime) {
  phone_.notifications.setStatus(UNAuthorizationStatus::denied);
  await(ExpenseNotifier::post("title", "unseen"));
  phone_.notifications.setStatus(UNAuthorizationStatus::authorized);
  await(ExpenseNotifier::post("title", "seen"));
  EXPECT_THAT(phone_.notifications.told(), ElementsAre("title | seen"));
}

TEST_F(AnExpenseNotifier, ReturnsSilentlyWhenTheCenterRefuses) {
  phone_.notifications.willRefuse();
  const auto before = phone_.contents();
  const auto written = testkit::writtenBy([] { await(ExpenseNotifier::post("title", "body")); });
  EXPECT_EQ(written.out, "");
  EXPECT_EQ(written.err, "");
  EXPECT_THAT(handedOver(), SizeIs(1)) << "and does not try again";
  EXPECT_EQ(phone_.contents(), before);
}

TEST_F(AnExpenseNotifier, ReturnsAfterTheCenterHasTheRequest) {
  phone_.notifications.addGate().close();
  auto posting = testkit::executor().start(ExpenseNotifier::post("title", "body"));
  phone_.notifications.addGate().waitForArrivals(1);
  EXPECT_FALSE(posting.waitFor(std::chrono::milliseconds(0)));
  phone_.notifications.addGate().open();
  posting.wait();
}

TEST_F(AnExpenseNotifier, FinishesWhenItsTaskIsCancelled) {
  phone_.notifications.settingsGate().close();
  auto posting = testkit::executor().start(ExpenseNotifier::post("title", "body"));
  phone_.notifications.settingsGate().waitForArrivals(1);
  posting.cancel();
  phone_.notifications.settingsGate().open();
  posting.wait();
  EXPECT_THAT(phone_.notifications.told(), ElementsAre("title | body"));
}

class WithoutFullPermission : public AnExpenseNotifier,
                              public ::testing::WithParamInterface<UNAuthorizationStatus> {};

TEST_P(WithoutFullPermission, NoNotificationIsPosted) {
  phone_.notifications.setStatus(GetParam());
  await(ExpenseNotifier::post("title", "body"));
  EXPECT_THAT(handedOver(), IsEmpty());
  EXPECT_THAT(phone_.log.names(), ElementsAre("settings"));
}

INSTANTIATE_TEST_SUITE_P(
    Statuses, WithoutFullPermission,
    ::testing::Values(UNAuthorizationStatus::notDetermined, UNAuthorizationStatus::denied,
                      UNAuthorizationStatus::provisional, UNAuthorizationStatus::ephemeral),
    [](const auto& status) { return "Status" + std::to_string(static_cast<int>(status.param)); });

}  // namespace
}  // namespace kivo
