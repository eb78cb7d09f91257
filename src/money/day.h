// Days, months and years of the Gregorian calendar. Knows no clock.
#pragma once

#include <chrono>
#include <compare>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo::money {

class Month;

/// A year from 0 to 9999.
class Year {
 public:
  /// Reads four digits; absent for any other text.
  static std::optional<Year> fromText(std::string_view text);
  constexpr explicit Year(int number) : year_(number) {}

  /// Returns yyyy.
  [[nodiscard]] std::string text() const;
  [[nodiscard]] constexpr Year before() const { return Year(static_cast<int>(year_) - 1); }
  /// Returns its twelve months, January first.
  [[nodiscard]] std::vector<Month> months() const;

  // clang-tidy takes the 0 of a comparison for a pointer.
  // NOLINTNEXTLINE(modernize-use-nullptr)
  auto operator<=>(const Year&) const = default;

 private:
  std::chrono::year year_;
};

/// A month of a year from 0 to 9999.
class Month {
 public:
  /// Reads yyyy-MM; absent for any other text.
  static std::optional<Month> fromText(std::string_view text);
  /// January 1970.
  constexpr Month() = default;
  constexpr explicit Month(std::chrono::year_month month) : month_(month) {}
  /// Reads a constant, also in the place of a month, and does not compile when that is not a month.
  // NOLINTNEXTLINE(google-explicit-constructor)
  consteval Month(const char (&text)[8]);

  /// Returns yyyy-MM.
  [[nodiscard]] std::string text() const;
  /// Returns the month in words: "November 2026".
  [[nodiscard]] std::string name() const;
  /// Returns the first three letters of `name`.
  [[nodiscard]] std::string shortName() const { return name().substr(0, 3); }
  /// The number of its days.
  [[nodiscard]] int days() const;
  [[nodiscard]] constexpr Year year() const { return Year(static_cast<int>(month_.year())); }
  /// The month that is `count` months before this one.
  [[nodiscard]] Month before(int count = 1) const;

  // clang-tidy takes the 0 of a comparison for a pointer.
  // NOLINTNEXTLINE(modernize-use-nullptr)
  auto operator<=>(const Month&) const = default;

 private:
  friend struct Period;

  std::chrono::year_month month_{std::chrono::year(1970) / 1};
};

/// An existing day of a year from 0 to 9999.
class Day {
 public:
  /// Reads yyyy-MM-dd; absent for any other text and for a day that does not exist.
  static std::optional<Day> fromText(std::string_view text);
  /// 1970-01-01.
  constexpr Day() = default;
  /// Reads a constant, also in the place of a day, and does not compile when that is not a day.
  // NOLINTNEXTLINE(google-explicit-constructor)
  consteval Day(const char (&text)[11]) : day_(parsed(text)) {
    if (!day_.ok()) throw "this is no day";
  }

  /// Returns yyyy-MM-dd.
  [[nodiscard]] std::string text() const;
  [[nodiscard]] constexpr Month month() const { return Month(day_.year() / day_.month()); }
  /// The day that is `count` days before this one, of a year from 0 on.
  [[nodiscard]] Day before(int count) const;
  /// The number of days from `earlier` to this one; below zero when that is later.
  [[nodiscard]] int daysSince(const Day& earlier) const;
  /// The day `number`, or the last one, of the month that follows this one's.
  [[nodiscard]] Day inNextMonth(int number) const;
  /// Its number in the month, from 1.
  [[nodiscard]] int number() const { return static_cast<int>(static_cast<unsigned>(day_.day())); }

  // clang-tidy takes the 0 of a comparison for a pointer.
  // NOLINTNEXTLINE(modernize-use-nullptr)
  auto operator<=>(const Day&) const = default;

 private:
  friend struct Period;
  constexpr explicit Day(std::chrono::year_month_day day) : day_(day) {}
  // Of yyyy-MM-dd; of any other text a day that does not exist.
  static constexpr std::chrono::year_month_day parsed(std::string_view text);
  friend class Month;

  std::chrono::year_month_day day_{std::chrono::year(1970) / 1 / 1};
};

/// The days from the first to the last, both included.
struct Period {
  Day first;
  Day last;

  /// All days of the months from `first` to `last`.
  static Period of(const Month& first, const Month& last);
  static Period of(const Month& month) { return of(month, month); }
  static Period of(const Year& year) { return of(year.months().front(), year.months().back()); }
};

constexpr std::chrono::year_month_day Day::parsed(std::string_view text) {
  const auto number = [text](std::size_t begin, std::size_t count) {
    unsigned value = 0;
    for (const char digit : text.substr(begin, count)) {
      if (digit < '0' || digit > '9') return 0xFFU;  // neither a month nor a day
      value = value * 10 + static_cast<unsigned>(digit - '0');
    }
    return value;
  };
  constexpr std::chrono::year_month_day none{std::chrono::year(0), std::chrono::month(0),
                                             std::chrono::day(0)};
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return none;
  if (text.substr(0, 4).find_first_not_of("0123456789") != std::string_view::npos) return none;
  return {std::chrono::year(static_cast<int>(number(0, 4))), std::chrono::month(number(5, 2)),
          std::chrono::day(number(8, 2))};
}

consteval Month::Month(const char (&text)[8]) {
  char day[] = "yyyy-MM-01";
  for (int at = 0; at < 7; ++at) day[at] = text[at];
  month_ = Day(day).month().month_;
}

}  // namespace kivo::money
