#include "notification_center/notification_center.h"

#include <csignal>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "testkit/private_folders.h"

namespace kivo {
namespace {
using platform::Date;
using platform::Moment;
using platform::UNAuthorizationStatus;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using namespace std::chrono_literals;

constexpr const char* bundle = "app.kivo.expenses.intents";
Moment present;

// Prevents all files of this process from growing.
class FullDisk {
 public:
  FullDisk() : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit none = before_;
    none.rlim_cur = 0;
    setrlimit(RLIMIT_FSIZE, &none);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int);
};

class TheNotificationCenter : public testing::Test {
 protected:
  void SetUp() override {
    present = Moment(std::chrono::sys_days(2026y / 3 / 14));
    Date::setClock([] { return present; });
    restart();
  }
  void TearDown() override { Date::setClock(nullptr); }

  // A restart of the process.
  void restart() {
    center.reset();
    answers.clear();
    center.emplace(NotificationRecord::open().value(),
                   [this](const platform::UNMutableNotificationContent& content, auto done) {
                     titles.push_back(content.title);
                     const auto link = content.userInfo.find("deepLink");
                     links.push_back(link == content.userInfo.end() ? "" : link->second);
                     answers.push_back(std::move(done));
                   });
  }

  AddOutcome add(const std::string& identifier, std::chrono::duration<double> interval = 1s,
                 const std::string& ofBundle = bundle) {
    platform::UNNotificationRequest request{
        .identifier = identifier, .content = {}, .trigger = {.timeInterval = interval}};
    request.content.title = identifier;
    request.content.userInfo = {{"deepLink", "kivo-expenses://"}};
    return center->add(ofBundle, std::move(request));
  }

  // Adds the requests "1" to `count`.
  void addMany(int count) {
    for (int number = 1; number <= count; ++number) add(std::to_string(number));
  }

  testkit::PrivateFolders folders;
  std::optional<NotificationCenter> center;
  // The shown titles and links, and for each of them the callback for the outcome.
  std::vector<std::string> titles;
  std::vector<std::string> links;
  std::vector<std::function<void(ShowOutcome)>> answers;
};

TEST_F(TheNotificationCenter, ShowsNothingBeforeItIsDue) {
  add("one");
  present += 999ms;
  EXPECT_THAT(center->showDue(), Optional(1ms));
  EXPECT_THAT(titles, IsEmpty());
  present += 1ms;
  EXPECT_EQ(center->showDue(), std::nullopt);
  EXPECT_THAT(titles, ElementsAre("one"));
}

TEST_F(TheNotificationCenter, WaitsForTheNextDueRequest) {
  EXPECT_EQ(center->showDue(), std::nullopt);
  add("late", 60s);
  add("soon", 2s);
  EXPECT_THAT(center->showDue(), Optional(2000ms));
  present += 2s;
  EXPECT_THAT(center->showDue(), Optional(58000ms));
  EXPECT_THAT(titles, ElementsAre("soon"));
}

TEST_F(TheNotificationCenter, ShowsARequestOnceWhileTheServerIsBusy) {
  add("one", 0s);
  center->showDue();
  center->showDue();
  EXPECT_THAT(titles, ElementsAre("one"));
  EXPECT_THAT(center->pending(bundle), ElementsAre("one"));
  answers.at(0)(ShowOutcome::shown);
  EXPECT_THAT(center->pending(bundle), IsEmpty());
}

TEST_F(TheNotificationCenter, ShowsOverdueRequestsAfterARestart) {
  add("one");
  add("two");
  present += 1h;
  restart();
  center->showDue();
  EXPECT_THAT(titles, ElementsAre("one", "two"));
}

TEST_F(TheNotificationCenter, ShowsTheFiveNewestOverdueRequestsAndCountsTheRest) {
  addMany(12);
  present += 1h;
  restart();
  EXPECT_EQ(center->showDue(), std::nullopt);
  EXPECT_THAT(titles, ElementsAre("8", "9", "10", "11", "12", "7 earlier notifications"));
  EXPECT_EQ(links.back(), "kivo-expenses://");
}

TEST_F(TheNotificationCenter, ShowsFiveOverdueRequestsWithoutACount) {
  addMany(5);
  present += 1h;
  restart();
  center->showDue();
  EXPECT_THAT(titles, ElementsAre("1", "2", "3", "4", "5"));
}

TEST_F(TheNotificationCenter, CountsOneRequestInTheSingular) {
  addMany(6);
  present += 1h;
  restart();
  center->showDue();
  EXPECT_THAT(titles, ElementsAre("2", "3", "4", "5", "6", "1 earlier notification"));
}

TEST_F(TheNotificationCenter, KeepsCountedRequestsUntilTheirCountIsShown) {
  addMany(12);
  present += 1h;
  restart();
  center->showDue();
  EXPECT_EQ(center->pending(bundle).size(), 12U);
  answers.at(5)(ShowOutcome::shown);
  EXPECT_THAT(center->pending(bundle), ElementsAre("8", "9", "10", "11", "12"));
  for (std::size_t one = 0; one < 5; ++one) answers.at(one)(ShowOutcome::shown);

  restart();
  EXPECT_THAT(center->pending(bundle), IsEmpty());
  addMany(12);
  EXPECT_THAT(center->pending(bundle), IsEmpty()) << "each was shown or counted";
}

TEST_F(TheNotificationCenter, ShowsMoreOfTheRestWhenTheServerRefusesTheirCount) {
  addMany(12);
  present += 1h;
  restart();
  center->showDue();
  for (std::size_t one = 0; one < 5; ++one) answers.at(one)(ShowOutcome::shown);
  answers.at(5)(ShowOutcome::failed);
  EXPECT_THAT(center->showDue(), Optional(5000ms));
  titles.clear();
  present += 5s;
  center->showDue();
  EXPECT_THAT(titles, ElementsAre("3", "4", "5", "6", "7", "2 earlier notifications"));
}

TEST_F(TheNotificationCenter, ShowsAtMostFiveAndACountToAServerThatAppears) {
  add("tried", 0s);
  center->showDue();
  answers.at(0)(ShowOutcome::noServer);
  addMany(126);
  present += 1h;
  titles.clear();
  center->serverAppeared();
  center->showDue();
  EXPECT_THAT(titles, ElementsAre("122", "123", "124", "125", "126", "122 earlier notifications"));
}

TEST_F(TheNotificationCenter, DoesNotRepeatShownRequestsAfterARestart) {
  add("one", 0s);
  center->showDue();
  answers.at(0)(ShowOutcome::shown);
  restart();
  EXPECT_EQ(center->showDue(), std::nullopt);
  EXPECT_EQ(add("one", 0s), AddOutcome::kept);
  center->showDue();
  EXPECT_THAT(titles, ElementsAre("one"));
}

TEST_F(TheNotificationCenter, KeepsTheContentOfARequestAcrossARestart) {
  platform::UNNotificationRequest request{
      .identifier = "one", .content = {}, .trigger = {.timeInterval = 1500ms}};
  request.content.title = "💸 \"quoted\"";
  request.content.body = "two\nlines & <more>";
  request.content.userInfo = {{"deepLink", "kivo-expenses://"}, {"", "empty"}};
  const auto due = present + 1500ms;
  const std::vector<PendingNotification> all{{.bundle = bundle, .request = request, .due = due}};
  EXPECT_EQ(pendingNotifications(textOf(all)), all);
}

TEST_F(TheNotificationCenter, WaitsTheIntervalAtMostWhenTheClockIsSetBack) {
  add("one");
  present -= 24h;
  EXPECT_THAT(center->showDue(), Optional(1000ms));
  present += 1s;
  center->showDue();
  EXPECT_THAT(titles, ElementsAre("one"));
}

TEST_F(TheNotificationCenter, RetriesARefusedRequestAfterADelay) {
  add("one", 0s);
  center->showDue();
  answers.at(0)(ShowOutcome::failed);
  EXPECT_THAT(center->showDue(), Optional(5000ms));
  EXPECT_THAT(titles, ElementsAre("one"));
  present += 5s;
  center->showDue();
  EXPECT_THAT(titles, ElementsAre("one", "one"));
}

TEST_F(TheNotificationCenter, RetriesAtOnceWhenAServerStarts) {
  add("refused", 0s);
  center->showDue();
  answers.at(0)(ShowOutcome::failed);
  center->serverAppeared();
  center->showDue();
  EXPECT_THAT(titles, ElementsAre("refused", "refused"));
}

TEST_F(TheNotificationCenter, MakesNoAttemptWithoutAServer) {
  add("one", 0s);
  center->showDue();
  answers.at(0)(ShowOutcome::noServer);
  add("two", 0s);
  present += 1h;
  EXPECT_EQ(center->showDue(), std::nullopt);
  EXPECT_THAT(titles, ElementsAre("one"));

  center->serverAppeared();
  center->showDue();
  EXPECT_THAT(titles, ElementsAre("one", "one", "two"));
}

TEST_F(TheNotificationCenter, AcceptsAnIdentifierOncePerBundle) {
  add("one");
  EXPECT_EQ(add("one"), AddOutcome::kept);
  add("one", 1s, "app.other");
  EXPECT_THAT(center->pending(bundle), ElementsAre("one"));
  EXPECT_THAT(center->pending("app.other"), ElementsAre("one"));
}

TEST_F(TheNotificationCenter, DropsTheOldestRequestAbove500) {
  for (int number = 0; number <= 500; ++number) add(std::to_string(number));
  EXPECT_EQ(center->pending(bundle).size(), 500U);
  EXPECT_EQ(center->pending(bundle).front(), "1");
  EXPECT_EQ(center->pending(bundle).back(), "500");
  restart();
  EXPECT_EQ(center->pending(bundle).size(), 500U);
}

TEST_F(TheNotificationCenter, KeepsThePermissionOfEachBundle) {
  EXPECT_EQ(center->authorizationStatus(bundle), UNAuthorizationStatus::notDetermined);
  EXPECT_EQ(center->setAuthorizationStatus(bundle, UNAuthorizationStatus::provisional),
            PermissionOutcome::kept);
  restart();
  EXPECT_EQ(center->authorizationStatus(bundle), UNAuthorizationStatus::provisional);
  EXPECT_EQ(center->authorizationStatus("app.other"), UNAuthorizationStatus::notDetermined);
}

TEST_F(TheNotificationCenter, DropsPendingRequestsOfADeniedBundle) {
  add("one");
  add("other", 1s, "app.other");
  center->setAuthorizationStatus(bundle, UNAuthorizationStatus::denied);
  EXPECT_EQ(add("two"), AddOutcome::denied);
  restart();
  EXPECT_THAT(center->pending(bundle), IsEmpty());
  EXPECT_THAT(center->pending("app.other"), ElementsAre("other"));
}

TEST_F(TheNotificationCenter, ReportsARequestThatItCannotStore) {
  {
    const FullDisk full;
    EXPECT_EQ(add("one"), AddOutcome::notKept);
    EXPECT_EQ(center->setAuthorizationStatus(bundle, UNAuthorizationStatus::authorized),
              PermissionOutcome::notKept);
  }
  EXPECT_THAT(center->pending(bundle), IsEmpty());
  EXPECT_EQ(center->authorizationStatus(bundle), UNAuthorizationStatus::notDetermined);
  EXPECT_EQ(add("one"), AddOutcome::kept);
}

TEST_F(TheNotificationCenter, TreatsADamagedRecordAsEmpty) {
  {
    auto suite = platform::UserDefaults::initWithSuiteName("app.kivo.NotificationCenter").value();
    suite.setObject("pendingNotifications", "[{\"bundle\":1}]");
    suite.setObject("shownNotifications", "no list");
    suite.setDouble(std::string("authorizationStatus.") + bundle, 77);
    ASSERT_TRUE(suite.synchronize());
  }
  testing::internal::CaptureStderr();
  restart();
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              testing::HasSubstr("pendingNotifications cannot be read"));
  EXPECT_EQ(center->showDue(), std::nullopt);
  EXPECT_EQ(center->authorizationStatus(bundle), UNAuthorizationStatus::notDetermined);
  EXPECT_EQ(add("one"), AddOutcome::kept);
}

TEST_F(TheNotificationCenter, TreatsARecordWithAnInvalidIntervalAsDamaged) {
  add("one");
  {
    auto suite = platform::UserDefaults::initWithSuiteName("app.kivo.NotificationCenter").value();
    std::string text = suite.stringForKey("pendingNotifications").value();
    const std::string interval = "\"interval\":";
    const std::size_t begin = text.find(interval) + interval.size();
    text.replace(begin, text.find(',', begin) - begin, "1e300");
    suite.setObject("pendingNotifications", text);
    ASSERT_TRUE(suite.synchronize());
  }
  testing::internal::CaptureStderr();
  restart();
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              testing::HasSubstr("pendingNotifications cannot be read"));
  EXPECT_EQ(center->showDue(), std::nullopt);
}

}  // namespace
}  // namespace kivo
