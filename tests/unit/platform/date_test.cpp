#include "platform/foundation/date.h"

#include <gtest/gtest.h>

namespace kivo::platform {
namespace {

using namespace std::chrono_literals;

class ADate : public testing::Test {
 protected:
  ~ADate() override { Date::setClock(nullptr); }
};

TEST_F(ADate, IsTheCurrentTime) {
  const auto before = std::chrono::floor<Moment::duration>(std::chrono::system_clock::now());
  const Moment now = Date::now();
  EXPECT_LE(before, now);
  EXPECT_LE(now, std::chrono::system_clock::now());
}

TEST_F(ADate, FollowsATestClockUntilItIsRemoved) {
  Date::setClock([] { return Moment(1234567us); });
  EXPECT_EQ(Date::now(), Moment(1234567us));
  Date::setClock(nullptr);
  EXPECT_GT(Date::now(), Moment(24h * 365 * 50));
}

TEST_F(ADate, CountsFractionsOfSeconds) {
  EXPECT_EQ(secondsSince1970(Moment(0us)), 0.0);
  EXPECT_EQ(secondsSince1970(Moment(1'500'000us)), 1.5);
  EXPECT_EQ(secondsSince1970(Moment(-250'000us)), -0.25);
  EXPECT_EQ(secondsSince1970(Moment(1769850300s + 125ms)), 1769850300.125);
}

TEST_F(ADate, CountsWholeSecondsOfAnyYear) {
  EXPECT_EQ(wholeSecondsSince1970(Moment(1'999'999us)), 1);
  EXPECT_EQ(wholeSecondsSince1970(Moment(-1us)), -1);
  EXPECT_EQ(wholeSecondsSince1970(Moment(99'999'999'999s)), 99'999'999'999);
}

}  // namespace
}  // namespace kivo::platform
