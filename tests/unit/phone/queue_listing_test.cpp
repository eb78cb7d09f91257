#include "phone/queue_listing.h"

#include <algorithm>
#include <limits>

#include <gtest/gtest.h>

namespace kivo {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t anyWidth = std::numeric_limits<std::size_t>::max();
constexpr platform::Moment now = std::chrono::sys_days(2026y / 1 / 31) + 9h;

PendingSmsItem waiting(std::string smsText, std::string queuedAt, std::int64_t retryCount = 0) {
  return {.id = "9B2E8C53-4D7A-4F6B-A1C0-5E3D2F1A0B9C",
          .smsText = std::move(smsText),
          .expenseDate = "2026-01-31",
          .queuedAt = std::move(queuedAt),
          .retryCount = retryCount,
          .source = "sms"};
}

TEST(AnAge, IsJustNowBelowAMinuteOrInTheFuture) {
  EXPECT_EQ(QueueListing::ageText(-1h), "just now");
  EXPECT_EQ(QueueListing::ageText(0s), "just now");
  EXPECT_EQ(QueueListing::ageText(59s), "just now");
}

TEST(AnAge, IsShownInWholeMinutesHoursOrDays) {
  EXPECT_EQ(QueueListing::ageText(60s), "1 min");
  EXPECT_EQ(QueueListing::ageText(59min + 59s), "59 min");
  EXPECT_EQ(QueueListing::ageText(1h), "1 h");
  EXPECT_EQ(QueueListing::ageText(47h + 59min), "47 h");
  EXPECT_EQ(QueueListing::ageText(48h), "2 days");
  EXPECT_EQ(QueueListing::ageText(24h * 400), "400 days");
}

TEST(AQueueListing, ShowsThatNothingWaits) {
  EXPECT_EQ(QueueListing::text({}, now, anyWidth), "Nothing waits to be sent.\n");
}

TEST(AQueueListing, ShowsEachTextWithItsAgeAndRetries) {
  EXPECT_EQ(QueueListing::text({waiting("Paid EGP 12 at Cafe", "2026-01-31T08:15:00Z"),
                                waiting("Paid EGP 7", "2026-01-29T08:00:00Z", 1),
                                waiting("Paid EGP 9", "2026-01-31T09:00:00+02:00", 9)},
                               now, anyWidth),
            "3 texts wait to be sent, the next one first.\n"
            "\n"
            "#  WAITING  TRIED AGAIN  TEXT\n"
            "1  45 min   not yet      Paid EGP 12 at Cafe\n"
            "2  2 days   once         Paid EGP 7\n"
            "3  2 h      9 times      Paid EGP 9\n");
}

// When each row measured all of them, 8000 took 40 s.
TEST(AQueueListing, TakesLinearTimeForThousandsOfTexts) {
  const std::vector<PendingSmsItem> many(5000, waiting("Paid EGP 7", "2026-01-29T08:00:00Z"));
  const auto start = std::chrono::steady_clock::now();
  const std::string listing = QueueListing::text(many, now, anyWidth);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 3s);
  EXPECT_EQ(std::count(listing.begin(), listing.end(), '\n'), 5003);
}

TEST(AQueueListing, UsesTheSingularForOneText) {
  EXPECT_EQ(QueueListing::text({waiting("x", "2026-01-31T09:00:00Z")}, now, anyWidth),
            "1 text waits to be sent.\n"
            "\n"
            "#  WAITING   TRIED AGAIN  TEXT\n"
            "1  just now  not yet      x\n");
}

TEST(AQueueListing, ShowsAnUnknownAgeForAnInvalidTime) {
  EXPECT_EQ(QueueListing::text({waiting("x", "yesterday")}, now, anyWidth),
            "1 text waits to be sent.\n"
            "\n"
            "#  WAITING  TRIED AGAIN  TEXT\n"
            "1  unknown  not yet      x\n");
}

TEST(AQueueListing, KeepsEachTextOnItsLine) {
  const std::string listing =
      QueueListing::text({waiting("a\nb\x1b[2Jc", "2026-01-31T09:00:00Z")}, now, anyWidth);
  EXPECT_TRUE(listing.ends_with("not yet      a\\nb\\x1b[2Jc\n")) << listing;
}

TEST(AQueueListing, CutsTextsToTheWidthOfTheTerminal) {
  const std::string listing = QueueListing::text(
      {waiting("123456789 123456789 123456789", "2026-01-31T09:00:00Z")}, now, 48);
  EXPECT_TRUE(listing.ends_with("just now  not yet      123456789 123456789 1…\n")) << listing;
}

TEST(AQueueListing, KeepsSomeOfTheTextOnANarrowTerminal) {
  const std::string listing = QueueListing::text(
      {waiting("123456789 123456789 123456789", "2026-01-31T09:00:00Z")}, now, 5);
  EXPECT_TRUE(listing.ends_with("123456789 123456789…\n")) << listing;
}

TEST(AQueueListing, PadsItsNumbers) {
  const std::vector<PendingSmsItem> items(10, waiting("x", "2026-01-31T09:00:00Z"));
  const std::string listing = QueueListing::text(items, now, anyWidth);
  EXPECT_NE(listing.find("\n1   just now  not yet      x\n"), std::string::npos) << listing;
  EXPECT_TRUE(listing.ends_with("\n10  just now  not yet      x\n")) << listing;
}

TEST(TheDetailsOfAText, HaveALineForEachValueAndTheWholeText) {
  EXPECT_EQ(QueueListing::details(waiting("Paid EGP 12\nat Cafe", "2026-01-31T08:15:00Z", 1), now,
                                  QueueListing::Controls::asTheyAre),
            "Waiting      45 min, since 2026-01-31T08:15:00Z\n"
            "Tried again  once\n"
            "Day          2026-01-31\n"
            "Source       sms\n"
            "Identifier   9B2E8C53-4D7A-4F6B-A1C0-5E3D2F1A0B9C\n"
            "\n"
            "Paid EGP 12\nat Cafe\n");
}

TEST(TheDetailsOfAText, ShowAmountAndMerchantOfAnAddedExpense) {
  PendingSmsItem item = waiting("Paid 12.5 EGP at Cafe", "2026-01-31T08:15:00Z");
  item.source = "apple_pay";
  item.amount = 12.5;
  item.merchant = "Cafe";
  EXPECT_NE(QueueListing::details(item, now, QueueListing::Controls::asTheyAre)
                .find("Source       apple_pay\nAmount       12.5\nMerchant     Cafe\n"),
            std::string::npos);
}

TEST(TheDetailsOfAText, EscapeControlCharactersOfEveryValue) {
  const std::string bad = "a\n\x1b[2J";
  const PendingSmsItem item{.id = bad,
                            .smsText = bad,
                            .expenseDate = bad,
                            .queuedAt = bad,
                            .retryCount = 0,
                            .source = bad,
                            .merchant = bad};
  const std::string details = QueueListing::details(item, now, QueueListing::Controls::escaped);
  EXPECT_EQ(details.find('\x1b'), std::string::npos);
  EXPECT_EQ(std::count(details.begin(), details.end(), '\n'), 8);
}

}  // namespace
}  // namespace kivo
