// Runs with a wrong or changed clock, and at odd places of the calendar, lose nothing.
#include <map>
#include <tuple>

#include "timed_program.h"

namespace kivo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testkit::memberOf;
using testkit::secondsOf;

class AClock : public testkit::TimedProgram {};

TEST_F(AClock, LosesNoTextWhenItIsSetForwardAndBack) {
  const std::int64_t noon = secondsOf("2026-06-15T12:00:00Z");
  constexpr std::int64_t hour = 3600;
  std::map<std::string, std::string> textsByKey;
  for (const std::int64_t time : {noon, noon + hour, noon + 1, noon - hour, noon + 2}) {
    queueAt(time, "queued at " + std::to_string(time));
  }
  for (const PendingSmsItem& item : queue()) textsByKey[item.id] = item.smsText;
  ASSERT_THAT(textsByKey, SizeIs(5));

  saveAt(noon + hour, "forth");
  saveAt(noon, "back");
  EXPECT_THAT(queue(), IsEmpty());
  for (const auto& request : backend.requests()) {
    const std::string text = memberOf(request, "sms_text");
    if (text == "forth" || text == "back") continue;
    const auto sent = textsByKey.extract(memberOf(request, "idempotency_key"));
    ASSERT_TRUE(sent) << "a key that was not queued, or twice";
    EXPECT_EQ(sent.mapped(), text);
  }
  EXPECT_THAT(textsByKey, IsEmpty());
}

TEST_F(AClock, MakesNoDuplicateWhenItIsSetBackAnHour) {
  const std::int64_t noon = secondsOf("2026-06-15T12:00:00Z");
  queueAt(noon, "Paid 5");
  queueAt(noon - 3600, "Paid 5");
  EXPECT_THAT(queuedTexts(), ElementsAre("Paid 5", "Paid 5"));
}

TEST_F(AClock, MakesAnEqualTextADuplicateForLessThanAMinute) {
  const std::int64_t noon = secondsOf("2026-06-15T12:00:00Z");
  for (const auto& [apart, kept] : std::vector<std::pair<std::int64_t, std::size_t>>{
           {0, 1}, {59, 1}, {60, 2}, {61, 2}, {-59, 1}, {-60, 2}, {-61, 2}}) {
    const std::string text = "Paid 5, sent again after " + std::to_string(apart);
    const std::size_t before = queue().size();
    queueAt(noon, text);
    queueAt(noon + apart, text);
    EXPECT_EQ(queue().size() - before, kept) << apart;
  }
}

TEST_F(AClock, AllowsADrainThirtySecondsAfterTheEpoch) {
  queueAt(5, "queued");
  EXPECT_EQ(queue().at(0).queuedAt, "1970-01-01T00:00:05Z");
  EXPECT_EQ(queue().at(0).expenseDate, "1970-01-01");
  saveAt(29, "saved");  // a free lock is one of the time 0
  EXPECT_EQ(text(StoreKeys::todayDateKey), "1970-01-01");
  EXPECT_THAT(queuedTexts(), ElementsAre("queued"));
  saveAt(30, "saved later");
  EXPECT_THAT(queue(), IsEmpty());
}

TEST_F(AClock, WorksBeyond32BitSeconds) {
  for (const char* const last : {"2038-01-19T03:14:07Z", "2106-02-07T06:28:15Z"}) {
    const std::int64_t seconds = secondsOf(last);
    queueAt(seconds, "in the last second");
    queueAt(seconds + 1, "in the first second");
    ASSERT_THAT(queue(), SizeIs(2));
    EXPECT_EQ(queue().at(0).queuedAt, last);
    EXPECT_EQ(queue().at(1).queuedAt, testkit::timeOf(seconds + 1));
    EXPECT_EQ(queue().at(1).expenseDate, std::string(last).substr(0, 10));
    saveAt(seconds + 2, "saved");
    EXPECT_THAT(queue(), IsEmpty());
    EXPECT_EQ(text(StoreKeys::todayDateKey), std::string(last).substr(0, 10));
  }
}

TEST_F(AClock, DelaysADrainUntilTheLockExpiresWhenItIsSetBack) {
  const std::int64_t noon = secondsOf("2026-06-15T12:00:00Z");
  const std::int64_t taken = noon + 3600;
  queueAt(noon, "queued");
  {
    SharedStore opened = store();
    opened.writeFloat(StoreKeys::smsQueueDrainLock, static_cast<double>(taken));
    opened.synchronize();
  }
  for (const std::int64_t time : {noon, taken, taken + 29}) {
    saveAt(time, "while it is held");
    EXPECT_THAT(queuedTexts(), ElementsAre("queued")) << time - taken;
  }
  EXPECT_EQ(store().readFloat(StoreKeys::smsQueueDrainLock), static_cast<double>(taken));
  saveAt(taken + 30, "once it is free");
  EXPECT_THAT(queue(), IsEmpty());
  EXPECT_EQ(store().readFloat(StoreKeys::smsQueueDrainLock), 0);
}

// A moment in a time zone, and the day that request and totals must have.
struct LocalDay {
  const char* zone;
  const char* time;
  const char* day;

  friend void PrintTo(const LocalDay& local, std::ostream* out) {
    *out << local.time << " in " << local.zone;
  }
};

class ALocalDay : public AClock, public testing::WithParamInterface<LocalDay> {};

TEST_P(ALocalDay, FollowsTheZoneInRequestQueueAndTotals) {
  const auto& [zone, time, day] = GetParam();
  queueAt(secondsOf(time), "queued", zone);
  EXPECT_EQ(queue().at(0).expenseDate, day);
  EXPECT_EQ(queue().at(0).queuedAt, time);
  saveAt(secondsOf(time), "saved", zone);
  ASSERT_THAT(backend.requests(), SizeIs(2));
  for (const auto& request : backend.requests()) {
    EXPECT_EQ(memberOf(request, "expense_date"), day) << memberOf(request, "sms_text");
  }
  EXPECT_EQ(text(StoreKeys::todayDateKey), day);
}

INSTANTIATE_TEST_SUITE_P(
    , ALocalDay,
    testing::Values(
        // A month's end far ahead of UTC and far behind it; a leap day.
        LocalDay{"Pacific/Kiritimati", "2026-01-31T09:59:59Z", "2026-01-31"},
        LocalDay{"Pacific/Kiritimati", "2026-01-31T10:00:00Z", "2026-02-01"},
        LocalDay{"Pacific/Kiritimati", "2025-12-31T10:00:00Z", "2026-01-01"},
        LocalDay{"Pacific/Pago_Pago", "2026-02-01T10:59:59Z", "2026-01-31"},
        LocalDay{"Pacific/Pago_Pago", "2026-02-01T11:00:00Z", "2026-02-01"},
        LocalDay{"Pacific/Pago_Pago", "2028-03-01T10:59:59Z", "2028-02-29"},
        // The hour that does not exist: in Berlin in the night, in Cairo after midnight.
        LocalDay{"Europe/Berlin", "2026-03-28T22:59:59Z", "2026-03-28"},
        LocalDay{"Europe/Berlin", "2026-03-29T00:59:59Z", "2026-03-29"},
        LocalDay{"Europe/Berlin", "2026-03-29T01:00:00Z", "2026-03-29"},
        LocalDay{"Europe/Berlin", "2026-03-29T22:00:00Z", "2026-03-30"},
        LocalDay{"Africa/Cairo", "2026-04-23T21:59:59Z", "2026-04-23"},
        LocalDay{"Africa/Cairo", "2026-04-23T22:00:00Z", "2026-04-24"},
        // The hour that comes twice: in Cairo before midnight.
        LocalDay{"Europe/Berlin", "2026-10-25T00:30:00Z", "2026-10-25"},
        LocalDay{"Europe/Berlin", "2026-10-25T01:30:00Z", "2026-10-25"},
        LocalDay{"Africa/Cairo", "2026-10-29T20:59:59Z", "2026-10-29"},
        LocalDay{"Africa/Cairo", "2026-10-29T21:00:00Z", "2026-10-29"},
        LocalDay{"Africa/Cairo", "2026-10-29T22:00:00Z", "2026-10-30"}));

TEST_F(AClock, CountsTheRepeatedHourToOneDay) {
  const std::int64_t first = secondsOf("2026-10-29T20:30:00Z");
  for (const std::int64_t time : {first, first + 3600}) saveAt(time, "saved", "Africa/Cairo");
  EXPECT_EQ(text(StoreKeys::todayCount), "2");
  EXPECT_EQ(text(StoreKeys::todayTotal), "300.0");
  saveAt(first + 2 * 3600, "saved", "Africa/Cairo");
  EXPECT_EQ(text(StoreKeys::todayCount), "1");
  EXPECT_EQ(text(StoreKeys::monthlyTotal), "450.0");
}

TEST_F(AClock, DetectsDuplicatesByUtcNotByLocalTime) {
  const std::int64_t gap = secondsOf("2026-03-29T01:00:00Z");
  queueAt(gap - 1, "over the hour that is missing", "Europe/Berlin");
  queueAt(gap, "over the hour that is missing", "Europe/Berlin");
  EXPECT_THAT(queue(), SizeIs(1));
  const std::int64_t first = secondsOf("2026-10-25T00:30:00Z");
  queueAt(first, "in the hour that comes twice", "Europe/Berlin");
  queueAt(first + 3600, "in the hour that comes twice", "Europe/Berlin");
  EXPECT_THAT(queue(), SizeIs(3));
}

}  // namespace
}  // namespace kivo
