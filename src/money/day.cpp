#include "money/day.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace kivo::money {
namespace {

std::string formatted(const char* form, const std::chrono::year_month_day& day) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), form, static_cast<int>(day.year()),
                static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
  return text.data();
}

}  // namespace

std::optional<Year> Year::fromText(std::string_view text) {
  const auto january = Month::fromText(std::string(text) + "-01");
  return january ? std::optional(january->year()) : std::nullopt;
}

std::string Year::text() const { return months().front().text().substr(0, 4); }

std::vector<Month> Year::months() const {
  std::vector<Month> months;
  for (unsigned number = 1; number <= 12; ++number)
    months.emplace_back(year_ / std::chrono::month(number));
  return months;
}

std::optional<Month> Month::fromText(std::string_view text) {
  if (text.size() != 7) return std::nullopt;
  const auto first = Day::fromText(std::string(text) + "-01");
  return first ? std::optional(first->month()) : std::nullopt;
}

std::string Month::text() const { return formatted("%04d-%02u", month_ / 1); }

std::string Month::name() const {
  constexpr std::array names{"January", "February", "March",     "April",   "May",      "June",
                             "July",    "August",   "September", "October", "November", "December"};
  return std::string(names.at(static_cast<unsigned>(month_.month()) - 1)) +
         formatted(" %04d", month_ / 1);
}

int Month::days() const {
  return static_cast<int>(static_cast<unsigned>((month_ / std::chrono::last).day()));
}

Month Month::before(int count) const { return Month(month_ - std::chrono::months(count)); }

std::optional<Day> Day::fromText(std::string_view text) {
  const auto day = parsed(text);
  return day.ok() ? std::optional(Day(day)) : std::nullopt;
}

std::string Day::text() const { return formatted("%04d-%02u-%02u", day_); }

Day Day::before(int count) const {
  return Day(std::chrono::sys_days(day_) - std::chrono::days(count));
}

int Day::daysSince(const Day& earlier) const {
  return static_cast<int>(
      (std::chrono::sys_days(day_) - std::chrono::sys_days(earlier.day_)).count());
}

Day Day::inNextMonth(int number) const {
  const Month next = month().before(-1);
  return Period::of(next).first.before(1 - std::min(number, next.days()));
}

Period Period::of(const Month& first, const Month& last) {
  const std::chrono::year_month_day_last end = last.month_ / std::chrono::last;
  return {Day(first.month_ / 1), Day(end)};
}

}  // namespace kivo::money
