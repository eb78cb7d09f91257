// The size limits of the notification center.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "notification_center/notification_center.h"
#include "testkit/private_folders.h"

namespace kivo {
namespace {
using testing::SizeIs;
using namespace std::chrono_literals;

constexpr const char* bundle = "app.kivo.expenses.intents";

class AFullNotificationCenter : public testing::Test {
 protected:
  // Starts a center with `count` stored requests whose bodies have `size` bytes, all due.
  void startWith(std::size_t count, std::size_t size) {
    std::vector<PendingNotification> all(count);
    for (std::size_t number = 0; number < count; ++number) {
      all[number].bundle = bundle;
      all[number].request.identifier = std::to_string(number);
      all[number].request.content.body = std::string(size, 'x');
    }
    auto record = NotificationRecord::open().value();
    record.setPending(all);
    ASSERT_TRUE(record.commit());
    center.emplace(std::move(record), [this](const platform::UNMutableNotificationContent&,
                                             auto done) { answers.push_back(std::move(done)); });
  }

  AddOutcome add(const std::string& identifier, std::size_t size,
                 std::chrono::seconds interval = 1h) {
    platform::UNNotificationRequest request{
        .identifier = identifier, .content = {}, .trigger = {.timeInterval = interval}};
    request.content.body = std::string(size, 'x');
    return center->add(bundle, std::move(request));
  }
  std::vector<std::string> pending() { return center->pending(bundle); }

  testkit::PrivateFolders folders;
  std::optional<NotificationCenter> center;
  std::vector<std::function<void(ShowOutcome)>> answers;
};

TEST_F(AFullNotificationCenter, RefusesARequestWhen32MiBArePending) {
  startWith(500, 66'000);
  EXPECT_EQ(add("large", 2'000'000), AddOutcome::noRoom);
  ASSERT_THAT(pending(), SizeIs(500));
  EXPECT_EQ(pending().front(), "0");
  EXPECT_EQ(add("small", 60'000), AddOutcome::kept);
  EXPECT_EQ(pending().back(), "small");
}

TEST_F(AFullNotificationCenter, CountsTheEscapedSizeOfAText) {
  startWith(0, 0);
  platform::UNNotificationRequest request{
      .identifier = "one", .content = {}, .trigger = {.timeInterval = 1h}};
  request.content.body = std::string(5'000'000, '\x01');
  EXPECT_EQ(center->add(bundle, std::move(request)), AddOutcome::noRoom);
}

TEST_F(AFullNotificationCenter, RemembersFewerShownRequestsWithLongIdentifiers) {
  startWith(0, 0);
  const std::string rest(400'000, 'x');
  for (const char* const first : {"a", "b", "c"}) {
    add(first + rest, 1, 0s);
    center->showDue();
    answers.back()(ShowOutcome::shown);
  }
  for (const char* const first : {"c", "b", "a"}) add(first + rest, 1, 0s);
  EXPECT_THAT(pending(), SizeIs(1));
}

}  // namespace
}  // namespace kivo
