#include "platform/foundation/iso8601_date_formatter.h"

#include <gtest/gtest.h>

namespace kivo::platform {
namespace {

using namespace std::chrono_literals;
using namespace std::chrono;
using namespace std::string_literals;

constexpr Moment lateInJanuary = sys_days{2026y / January / 31} + 9h + 5min + 7s;

TEST(AnISO8601DateTime, IsWrittenInUtcWithWholeSeconds) {
  EXPECT_EQ(ISO8601DateFormatter::string(lateInJanuary), "2026-01-31T09:05:07Z");
  EXPECT_EQ(ISO8601DateFormatter::string(lateInJanuary + 999999us), "2026-01-31T09:05:07Z");
  EXPECT_EQ(ISO8601DateFormatter::string(Moment(0us)), "1970-01-01T00:00:00Z");
  EXPECT_EQ(ISO8601DateFormatter::string(Moment(-1us)), "1969-12-31T23:59:59Z");
  EXPECT_EQ(ISO8601DateFormatter::string(sys_days{2024y / February / 29} + 23h + 59min + 59s),
            "2024-02-29T23:59:59Z");
  EXPECT_EQ(ISO8601DateFormatter::string(sys_days{987y / May / 4}), "0987-05-04T00:00:00Z");
}

TEST(AnISO8601DateTime, RoundTripsToTheSameMoment) {
  for (Moment moment = lateInJanuary; moment < lateInJanuary + 24h * 900; moment += 37h + 11s) {
    EXPECT_EQ(ISO8601DateFormatter::date(ISO8601DateFormatter::string(moment)), moment);
  }
}

TEST(AnISO8601DateTime, IsReadWithItsOffset) {
  EXPECT_EQ(ISO8601DateFormatter::date("2026-01-31T09:05:07Z"), lateInJanuary);
  EXPECT_EQ(ISO8601DateFormatter::date("2026-01-31T11:05:07+02:00"), lateInJanuary);
  EXPECT_EQ(ISO8601DateFormatter::date("2026-01-31T03:35:07-05:30"), lateInJanuary);
  EXPECT_EQ(ISO8601DateFormatter::date("2026-02-01T09:04:07+23:59"), lateInJanuary);
  EXPECT_EQ(ISO8601DateFormatter::date("2026-01-31T09:05:07+00:00"), lateInJanuary);
  EXPECT_EQ(ISO8601DateFormatter::date("2026-01-31T09:05:07-00:00"), lateInJanuary);
}

TEST(AnISO8601DateTime, AcceptsEveryExistingDay) {
  EXPECT_TRUE(ISO8601DateFormatter::date("2024-02-29T00:00:00Z"));
  EXPECT_TRUE(ISO8601DateFormatter::date("2000-02-29T23:59:59Z"));
  EXPECT_TRUE(ISO8601DateFormatter::date("0001-01-01T00:00:00Z"));
  EXPECT_TRUE(ISO8601DateFormatter::date("9999-12-31T23:59:59-23:59"));
}

TEST(AnISO8601DateTime, RefusesADayOrTimeThatDoesNotExist) {
  for (const auto* const text :
       {"2026-02-30T00:00:00Z", "2026-02-29T00:00:00Z", "1900-02-29T00:00:00Z",
        "2026-04-31T00:00:00Z", "2026-00-10T00:00:00Z", "2026-13-10T00:00:00Z",
        "2026-01-00T00:00:00Z", "2026-01-32T00:00:00Z", "2026-01-31T24:00:00Z",
        "2026-01-31T23:60:00Z", "2026-12-31T23:59:60Z", "2026-01-31T09:05:07+24:00",
        "2026-01-31T09:05:07+02:60"}) {
    EXPECT_EQ(ISO8601DateFormatter::date(text), std::nullopt) << text;
  }
}

TEST(AnISO8601DateTime, IsNotReadFromAnotherFormat) {
  for (const auto& text : {""s,
                           "Z"s,
                           "2026-01-31"s,
                           "2026-01-31T"s,
                           "2026-01-31Z"s,
                           "09:05:07Z"s,
                           "2026-01-31T09:05:07"s,
                           "2026-01-31T09:05Z"s,
                           "2026-01-31T09:05:07.5Z"s,
                           "2026-01-31T09:05:07,5Z"s,
                           "2026-01-31T09:05:07.000Z"s,
                           "2026-01-31t09:05:07Z"s,
                           "2026-01-31T09:05:07z"s,
                           "2026-01-31 09:05:07Z"s,
                           "20260131T090507Z"s,
                           "2026-1-31T09:05:07Z"s,
                           "2026-01-31T9:05:07Z"s,
                           "26-01-31T09:05:07Z"s,
                           "12026-01-31T09:05:07Z"s,
                           "+2026-01-31T09:05:07Z"s,
                           "-026-01-31T09:05:07Z"s,
                           "2026-01-31T09:05:07+0200"s,
                           "2026-01-31T09:05:07+02"s,
                           "2026-01-31T09:05:07+02:0"s,
                           "2026-01-31T09:05:07+2:00"s,
                           "2026-01-31T09:05:07 02:00"s,
                           "2026-01-31T09:05:07UTC"s,
                           "2026-01-31T09:05:07ZZ"s,
                           "2026-01-31T09:05:07Z "s,
                           " 2026-01-31T09:05:07Z"s,
                           "2026-01-31T09:05:07Z\0"s,
                           "2026-01-31T09:05:07+02:00Z"s,
                           "2026/01/31T09:05:07Z"s,
                           "2026-01-31T09.05.07Z"s,
                           "2026-01-31T+9:05:07Z"s,
                           "2026-01-31T-9:05:07Z"s,
                           "2026-W05-6T09:05:07Z"s,
                           "2026-031T09:05:07Z"s,
                           "٢٠٢٦-٠١-٣١T٠٩:٠٥:٠٧Z"s,
                           "now"s}) {
    EXPECT_EQ(ISO8601DateFormatter::date(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace kivo::platform
