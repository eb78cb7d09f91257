#include "platform/foundation/iso8601_date_formatter.h"

#include <array>
#include <charconv>
#include <cstdio>

namespace kivo::platform {
namespace {

using namespace std::chrono;

// Reads a text from the left. After the first mismatch it stays failed.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  /// Reads exactly `count` digits.
  int digits(std::size_t count) {
    int value = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const char digit = next();
      fits_ = fits_ && digit >= '0' && digit <= '9';
      value = value * 10 + (digit - '0');
    }
    return value;
  }

  /// Reads two digits whose value is below `limit`.
  int digitsBelow(int limit) {
    const int value = digits(2);
    fits_ = fits_ && value < limit;
    return value;
  }

  void literal(char expected) { fits_ = next() == expected && fits_; }

  char next() {
    if (rest_.empty()) {
      fits_ = false;
      return '0';
    }
    const char first = rest_.front();
    rest_.remove_prefix(1);
    return first;
  }

  void fail() { fits_ = false; }
  [[nodiscard]] bool fitsToTheEnd() const { return fits_ && rest_.empty(); }

 private:
  std::string_view rest_;
  bool fits_ = true;
};

year_month_day readDay(Reader& reader) {
  const year theYear{reader.digits(4)};
  reader.literal('-');
  const month theMonth{static_cast<unsigned>(reader.digitsBelow(13))};
  reader.literal('-');
  const day theDay{static_cast<unsigned>(reader.digitsBelow(32))};
  const year_month_day date = theYear / theMonth / theDay;
  if (!date.ok()) reader.fail();
  return date;
}

seconds readTimeOfDay(Reader& reader) {
  const hours theHours{reader.digitsBelow(24)};
  reader.literal(':');
  const minutes theMinutes{reader.digitsBelow(60)};
  reader.literal(':');
  return theHours + theMinutes + seconds{reader.digitsBelow(60)};
}

minutes readOffset(Reader& reader) {
  const char sign = reader.next();
  if (sign == 'Z') return minutes{0};
  if (sign != '+' && sign != '-') reader.fail();
  const hours theHours{reader.digitsBelow(24)};
  reader.literal(':');
  const minutes offset = theHours + minutes{reader.digitsBelow(60)};
  return sign == '-' ? -offset : offset;
}

}  // namespace

std::string ISO8601DateFormatter::string(Moment moment) {
  const auto dayBegin = floor<days>(moment);
  const year_month_day date{dayBegin};
  const hh_mm_ss time{floor<seconds>(moment - dayBegin)};
  std::array<char, 64> text;
  const int length = std::snprintf(
      text.data(), text.size(), "%04d-%02u-%02uT%02ld:%02ld:%02ldZ", static_cast<int>(date.year()),
      static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), time.hours().count(),
      time.minutes().count(), time.seconds().count());
  return {text.data(), static_cast<std::size_t>(length)};
}

std::optional<Moment> ISO8601DateFormatter::date(std::string_view text) {
  Reader reader(text);
  const year_month_day day = readDay(reader);
  reader.literal('T');
  const seconds timeOfDay = readTimeOfDay(reader);
  const minutes offset = readOffset(reader);
  if (!reader.fitsToTheEnd()) return std::nullopt;
  return sys_days{day} + timeOfDay - offset;
}

}  // namespace kivo::platform
