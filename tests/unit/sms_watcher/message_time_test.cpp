#include "sms_watcher/message_time.h"

#include <gtest/gtest.h>

#include "testkit/set_clock.h"

namespace kivo {
namespace {

using testkit::utc;

TEST(AMessageTime, IsReadWithEveryOffsetFormatOfModems) {
  const auto moment = utc(2026, 11, 21, 10, 0, 5);
  EXPECT_EQ(momentSent("2026-11-21T12:00:05+02:00"), moment);
  EXPECT_EQ(momentSent("2026-11-21T12:00:05+0200"), moment);
  EXPECT_EQ(momentSent("2026-11-21T12:00:05+02"), moment);
  EXPECT_EQ(momentSent("2026-11-21T06:30:05-03:30"), moment);
  EXPECT_EQ(momentSent("2026-11-21T10:00:05Z"), moment);
  EXPECT_EQ(momentSent("2026-11-21T10:00:05"), moment);
}

TEST(AMessageTime, IsAbsentWhenItIsInvalid) {
  for (const char* const text : {"", "yesterday", "2026-11-21", "2026-02-30T10:00:05Z",
                                 "2026-11-21T10:00:05+2", "2026-11-21T10:00:05+02:00:00"}) {
    EXPECT_EQ(momentSent(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace kivo
