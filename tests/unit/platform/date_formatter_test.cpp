#include "platform/foundation/date_formatter.h"

#include <memory>

#include <gtest/gtest.h>
#include <unicode/smpdtfmt.h>

#include "testkit/private_folders.h"

namespace kivo::platform {
namespace {

using namespace std::chrono;
using namespace std::chrono_literals;
using testkit::ScopedVariable;

constexpr Moment lateInJanuary = sys_days{2026y / January / 31} + 22h + 30min;
constexpr Moment lateInJuly = sys_days{2026y / July / 31} + 22h + 30min;

class ADateFormatter : public testing::Test {
 protected:
  /// The day of `moment` as requests to the backend carry it.
  static std::string fixedDay(Moment moment) {
    return DateFormatter{.dateFormat = "yyyy-MM-dd", .locale = "en_US_POSIX"}.string(moment);
  }

  /// The day of `moment` on a device whose locale is `locale`.
  static std::string deviceDay(const std::string& locale, Moment moment) {
    const ScopedVariable variable("LC_ALL", locale);
    return DateFormatter{.dateFormat = "yyyy-MM-dd"}.string(moment);
  }

  /// `moment` on a device whose TZ is `zone`, or is unset.
  static std::string timeIn(const std::optional<std::string>& zone, Moment moment) {
    const ScopedVariable variable("TZ", zone);
    return DateFormatter{.dateFormat = "yyyy-MM-dd HH:mm:ss", .locale = "en_US_POSIX"}.string(
        moment);
  }

 private:
  testkit::PrivateFolders folders_;
};

TEST_F(ADateFormatter, ReturnsTheLocalDateAheadOfUtc) {
  for (const auto* const zone : {"Africa/Cairo", "EET-2", "<+02>-2", "Europe/Athens"}) {
    const ScopedVariable variable("TZ", zone);
    EXPECT_EQ(fixedDay(lateInJanuary), "2026-02-01") << zone;
    EXPECT_EQ(fixedDay(lateInJanuary - 31min), "2026-01-31") << zone;
  }
}

TEST_F(ADateFormatter, ReturnsTheLocalDateBehindUtc) {
  const ScopedVariable variable("TZ", "America/New_York");
  EXPECT_EQ(fixedDay(sys_days{2026y / March / 1} + 4h + 59min), "2026-02-28");
  EXPECT_EQ(fixedDay(sys_days{2026y / March / 1} + 5h), "2026-03-01");
}

TEST_F(ADateFormatter, WritesAsciiDigitsInAFixedLocale) {
  for (const auto* const locale : {"th_TH.UTF-8", "fa_IR.UTF-8", "ar_EG.UTF-8", "ar_SA", "bn_BD",
                                   "my_MM", "ja_JP.eucJP", "C", "POSIX", "broken"}) {
    const ScopedVariable all("LC_ALL", locale);
    const ScopedVariable time("LC_TIME", locale);
    const ScopedVariable lang("LANG", locale);
    EXPECT_EQ(fixedDay(lateInJanuary), "2026-01-31") << locale;
  }
}

TEST_F(ADateFormatter, FollowsTheCalendarAndDigitsOfTheDevice) {
  EXPECT_EQ(deviceDay("en_US.UTF-8", lateInJanuary), "2026-01-31");
  EXPECT_EQ(deviceDay("th_TH.UTF-8", lateInJanuary), "2569-01-31");
  EXPECT_EQ(deviceDay("fa_IR", lateInJanuary), "۱۴۰۴-۱۱-۱۱");
  EXPECT_EQ(deviceDay("ar_EG.UTF-8", lateInJanuary), "٢٠٢٦-٠١-٣١");
  EXPECT_EQ(deviceDay("C", lateInJanuary), "2026-01-31");
}

TEST_F(ADateFormatter, FollowsTheDateLocaleOfTheDevice) {
  const ScopedVariable all("LC_ALL", std::nullopt);
  const ScopedVariable time("LC_TIME", "th_TH.UTF-8");
  const ScopedVariable monetary("LC_MONETARY", "ar_EG.UTF-8");
  const ScopedVariable lang("LANG", "fa_IR.UTF-8");
  EXPECT_EQ(DateFormatter{.dateFormat = "yyyy"}.string(lateInJanuary), "2569");
}

TEST_F(ADateFormatter, AcceptsEveryFormatOfTZ) {
  EXPECT_EQ(timeIn("UTC", lateInJanuary), "2026-01-31 22:30:00");
  EXPECT_EQ(timeIn("Europe/Berlin", lateInJanuary), "2026-01-31 23:30:00");
  EXPECT_EQ(timeIn("Europe/Berlin", lateInJuly), "2026-08-01 00:30:00");
  EXPECT_EQ(timeIn(":Europe/Berlin", lateInJuly), "2026-08-01 00:30:00");
  EXPECT_EQ(timeIn("/usr/share/zoneinfo/Asia/Tokyo", lateInJuly), "2026-08-01 07:30:00");
  EXPECT_EQ(timeIn(":/usr/share/zoneinfo/Asia/Tokyo", lateInJuly), "2026-08-01 07:30:00");
  EXPECT_EQ(timeIn("Asia/Kathmandu", lateInJanuary), "2026-02-01 04:15:00");
  EXPECT_EQ(timeIn("EST5EDT", lateInJanuary), "2026-01-31 17:30:00");
  EXPECT_EQ(timeIn("EST5EDT", lateInJuly), "2026-07-31 18:30:00");
  EXPECT_EQ(timeIn("XYZ-3", lateInJanuary), "2026-02-01 01:30:00");
  EXPECT_EQ(timeIn("<+03>-3", lateInJanuary), "2026-02-01 01:30:00");
  EXPECT_EQ(timeIn("<-0330>3:30", lateInJanuary), "2026-01-31 19:00:00");
  EXPECT_EQ(timeIn("CET-1CEST,M3.5.0,M10.5.0/3", lateInJanuary), "2026-01-31 23:30:00");
  EXPECT_EQ(timeIn("CET-1CEST,M3.5.0,M10.5.0/3", lateInJuly), "2026-08-01 00:30:00");
}

TEST_F(ADateFormatter, UsesUtcWhenTZIsEmptyOrInvalid) {
  for (const auto* const zone :
       {"", ":", "garbage", "Nowhere/Town", "/nonexistent/zone", "+05:30"}) {
    EXPECT_EQ(timeIn(zone, lateInJuly), "2026-07-31 22:30:00") << zone;
  }
}

TEST_F(ADateFormatter, UsesTheSystemTimeZoneWithoutTZ) {
  const ScopedVariable none("TZ", std::nullopt);
  const std::time_t time = system_clock::to_time_t(lateInJuly);
  std::tm local = {};
  tzset();
  ASSERT_NE(localtime_r(&time, &local), nullptr);
  char expected[32];
  ASSERT_GT(std::strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S", &local), 0u);
  EXPECT_EQ(timeIn(std::nullopt, lateInJuly), expected);
}

TEST_F(ADateFormatter, ReadsTheTimeZoneForEachText) {
  const DateFormatter formatter{.dateFormat = "HH", .locale = "en_US_POSIX"};
  for (int i = 0; i < 3; ++i) {
    const ScopedVariable berlin("TZ", "Europe/Berlin");
    EXPECT_EQ(formatter.string(lateInJanuary), "23");
    const ScopedVariable tokyo("TZ", "Asia/Tokyo");
    EXPECT_EQ(formatter.string(lateInJanuary), "07");
  }
}

TEST_F(ADateFormatter, FollowsTheStartOfDaylightSavingTime) {
  const Moment springForward = sys_days{2026y / March / 29} + 1h;
  EXPECT_EQ(timeIn("Europe/Berlin", springForward - 1us), "2026-03-29 01:59:59");
  EXPECT_EQ(timeIn("Europe/Berlin", springForward), "2026-03-29 03:00:00");
}

TEST_F(ADateFormatter, RoundsDownToTheSecondBefore1970) {
  EXPECT_EQ(timeIn("UTC", Moment(-1us)), "1969-12-31 23:59:59");
}

// ICU's formatter, which supports every pattern and is therefore slow to create.
std::string byLibrary(const icu::Locale& locale, const std::string& pattern, Moment moment) {
  UErrorCode status = U_ZERO_ERROR;
  icu::SimpleDateFormat formatter(icu::UnicodeString::fromUTF8(pattern), locale, status);
  formatter.setTimeZone(*icu::TimeZone::getGMT());
  icu::UnicodeString text;
  formatter.format(secondsSince1970(moment) * 1000, text);
  std::string result;
  return U_SUCCESS(status) ? text.toUTF8String(result) : "";
}

TEST_F(ADateFormatter, MatchesIcuInEveryLocale) {
  const ScopedVariable zone("TZ", "UTC");
  const std::string pattern = "yyyy-MM-dd HH:mm:ss";
  std::int32_t count = 0;
  const icu::Locale* const locales = icu::Locale::getAvailableLocales(count);
  ASSERT_GT(count, 100);
  for (std::int32_t each = 0; each < count; ++each) {
    for (const Moment moment :
         {lateInJanuary, lateInJuly, Moment(sys_days{2028y / February / 29})}) {
      const DateFormatter formatter{.dateFormat = pattern, .locale = locales[each].getName()};
      EXPECT_EQ(formatter.string(moment), byLibrary(locales[each], pattern, moment))
          << locales[each].getName();
    }
  }
}

}  // namespace
}  // namespace kivo::platform
