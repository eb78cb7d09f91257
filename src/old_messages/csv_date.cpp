#include "old_messages/csv_date.h"

#include <cstdint>
#include <ctime>

#include "platform/foundation/number_text.h"

namespace kivo::old_messages {
namespace {

using platform::Moment;
using std::chrono::microseconds;
using std::chrono::seconds;

// Reads a text from its front.
class Front {
 public:
  explicit Front(std::string_view text) : left_(text) {}

  [[nodiscard]] bool isAtEnd() const { return left_.empty(); }
  bool take(char mark) {
    if (!left_.starts_with(mark)) return false;
    left_.remove_prefix(1);
    return true;
  }
  // A number of exactly so many digits; -1 when it is not there.
  int number(std::size_t digits) {
    if (left_.size() < digits) return -1;
    int value = 0;
    for (const char digit : left_.substr(0, digits)) {
      if (digit < '0' || digit > '9') return -1;
      value = value * 10 + (digit - '0');
    }
    left_.remove_prefix(digits);
    return value;
  }
  // The digits of a fraction, one or more; absent when there is none.
  std::optional<microseconds> fraction() {
    std::int64_t value = 0;
    std::int64_t unit = 1'000'000;
    const std::string_view before = left_;
    while (!left_.empty() && left_.front() >= '0' && left_.front() <= '9') {
      unit /= 10;
      value += unit * (left_.front() - '0');
      left_.remove_prefix(1);
    }
    if (before.size() == left_.size()) return std::nullopt;
    return microseconds(value);
  }

 private:
  std::string_view left_;
};

struct LocalTime {
  std::chrono::year_month_day day;
  int hour = 12;
  int minute = 0;
  int second = 0;
  microseconds fraction{0};
};

bool takeDay(Front& text, LocalTime& time) {
  const int year = text.number(4);
  if (year < 0 || !text.take('-')) return false;
  const int month = text.number(2);
  if (month < 0 || !text.take('-')) return false;
  const int day = text.number(2);
  if (day < 0) return false;
  time.day = std::chrono::year(year) / month / day;
  return time.day.ok();
}

bool takeTime(Front& text, LocalTime& time) {
  time.hour = text.number(2);
  if (time.hour < 0 || time.hour > 23 || !text.take(':')) return false;
  time.minute = text.number(2);
  if (time.minute < 0 || time.minute > 59) return false;
  if (!text.take(':')) return true;
  time.second = text.number(2);
  if (time.second < 0 || time.second > 60) return false;
  if (!text.take('.')) return true;
  const auto fraction = text.fraction();
  time.fraction = fraction.value_or(microseconds(0));
  return fraction.has_value();
}

// The seconds of an offset; absent when it is not valid.
std::optional<seconds> takeOffset(Front& text) {
  if (text.take('Z')) return seconds(0);
  const bool isAhead = text.take('+');
  if (!isAhead && !text.take('-')) return std::nullopt;
  const int hours = text.number(2);
  text.take(':');
  const int minutes = text.isAtEnd() ? 0 : text.number(2);
  if (hours < 0 || hours > 23 || minutes < 0 || minutes > 59) return std::nullopt;
  const seconds offset = std::chrono::hours(hours) + std::chrono::minutes(minutes);
  return isAhead ? offset : -offset;
}

seconds sinceEpoch(const LocalTime& time) {
  return std::chrono::sys_days(time.day).time_since_epoch() + std::chrono::hours(time.hour) +
         std::chrono::minutes(time.minute) + seconds(time.second);
}

Moment inDeviceZone(const LocalTime& time) {
  std::tm local = {};
  local.tm_year = static_cast<int>(time.day.year()) - 1900;
  local.tm_mon = static_cast<int>(static_cast<unsigned>(time.day.month())) - 1;
  local.tm_mday = static_cast<int>(static_cast<unsigned>(time.day.day()));
  local.tm_hour = time.hour;
  local.tm_min = time.minute;
  local.tm_sec = time.second;
  local.tm_isdst = -1;  // the C library finds it
  return Moment(seconds(std::mktime(&local)) + time.fraction);
}

std::optional<Moment> fromMilliseconds(std::string_view text) {
  constexpr std::int64_t most = 1'000'000'000'000'000;  // of the year 33658
  const auto number = platform::integerFromText(text);
  if (!number || *number < -most || *number > most) return std::nullopt;
  return Moment(std::chrono::milliseconds(*number));
}

}  // namespace

std::optional<Moment> momentFromCsv(std::string_view text) {
  if (const auto moment = fromMilliseconds(text)) return moment;
  Front front(text);
  LocalTime time;
  if (!takeDay(front, time)) return std::nullopt;
  if (front.isAtEnd()) return inDeviceZone(time);
  if (!front.take('T') && !front.take(' ')) return std::nullopt;
  if (!takeTime(front, time)) return std::nullopt;
  if (front.isAtEnd()) return inDeviceZone(time);
  const auto offset = takeOffset(front);
  if (!offset || !front.isAtEnd()) return std::nullopt;
  return Moment(sinceEpoch(time) - *offset + time.fraction);
}

}  // namespace kivo::old_messages
