#include "server/pace.h"

#include <gtest/gtest.h>

namespace kivo::server {
namespace {

using std::chrono::milliseconds;

class APace : public testing::Test {
 protected:
  // The wait of the last of `count` requests that come at once.
  milliseconds waitOfLast(const std::string& person, int count) {
    milliseconds wait{0};
    for (int number = 0; number < count; ++number) wait = pace_.waitOf(person, now_);
    return wait;
  }

  Pace::Time now_ = Pace::Time() + std::chrono::hours(1);
  Pace pace_;
};

TEST_F(APace, LetsAFullQueueThroughAtOnce) { EXPECT_EQ(waitOfLast("Mona", 200), milliseconds(0)); }

TEST_F(APace, SlowsDownWhoSendsMore) {
  waitOfLast("Mona", 200);
  EXPECT_EQ(pace_.waitOf("Mona", now_), milliseconds(100));
  EXPECT_EQ(pace_.waitOf("Mona", now_), milliseconds(200));
}

TEST_F(APace, LetsNobodyElseWaitForAHastyPerson) {
  waitOfLast("Mona", 400);
  EXPECT_EQ(pace_.waitOf("Ali", now_), milliseconds(0));
}

TEST_F(APace, NeverHasARequestWaitLongerThanAPhoneDoes) {
  EXPECT_EQ(waitOfLast("Mona", 5'000), Pace::longestWait);
}

TEST_F(APace, ForgetsHasteAfterAWhile) {
  waitOfLast("Mona", 250);
  now_ += std::chrono::seconds(60);
  EXPECT_EQ(waitOfLast("Mona", 200), milliseconds(0));
}

TEST_F(APace, SlowsAllDownWhenTheyAreTooManyTogether) {
  for (int person = 0; person < 1'500; ++person) pace_.waitOf(std::to_string(person), now_);
  EXPECT_EQ(pace_.waitOf("Mona", now_), milliseconds(1'002));
}

}  // namespace
}  // namespace kivo::server
