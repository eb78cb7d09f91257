#include "recognition/shop_town.h"

#include <algorithm>
#include <array>
#include <string>

#include "names/letter_case.h"
#include "names/name_fold.h"

namespace kivo::recognition {
namespace {

constexpr auto towns = [] {
  auto sorted = std::to_array<std::string_view>({
#include "recognition/towns.def"
  });
  std::ranges::sort(sorted);
  return sorted;
}();

constexpr auto countries = std::to_array<std::string_view>(
    {"AE", "AT", "AU", "BD", "BE", "BH", "BR", "CA", "CH", "CN", "DE", "DK", "EG", "ES", "ET",
     "FR", "GB", "GH", "GR", "HK", "ID", "IE", "IN", "IQ", "IT", "JO", "JP", "KE", "KR", "KW",
     "KZ", "LB", "LK", "LY", "MA", "MY", "MZ", "NG", "NL", "NO", "NP", "NZ", "OM", "PH", "PK",
     "PL", "PT", "QA", "RU", "SA", "SE", "SG", "TT", "JM", "BB", "GY", "BS", "BZ", "FJ", "PG",
     "MV", "MU", "BW", "NA", "MW", "ZW", "SL", "LR", "GM", "MT", "CY", "BN", "BT", "KH", "MM",
     "MN", "AF", "SO", "SZ", "SC", "PS", "SY", "SD", "YE", "DZ", "FI", "PT", "CZ", "HU", "RO",
     "BG", "RS", "HR", "SI", "SK", "LT", "LV", "EE", "IS", "LU", "IR", "IL", "AZ", "AM", "GE",
     "MX", "CL", "PE", "AR", "UY", "RW", "SN", "CI", "CM", "AO", "TH", "TN", "TR", "TW", "TZ",
     "UA", "UG", "UK", "US", "UZ", "VN", "ZA", "ZM"});

// The states of the United States, Canada's provinces and Australia's states.
constexpr auto states = std::to_array<std::string_view>(
    {"AL", "AK", "AZ", "AR", "CA", "CO", "CT", "DE",  "DC",  "FL", "GA", "HI", "ID",
     "IL", "IN", "IA", "KS", "KY", "LA", "ME", "MD",  "MA",  "MI", "MN", "MS", "MO",
     "MT", "NE", "NV", "NH", "NJ", "NM", "NY", "NC",  "ND",  "OH", "OK", "OR", "PA",
     "RI", "SC", "SD", "TN", "TX", "UT", "VT", "VA",  "WA",  "WV", "WI", "WY", "ON",
     "QC", "BC", "AB", "NS", "NB", "MB", "SK", "NSW", "VIC", "QLD"});

// Behind a comma these are no towns: "Fern Foods, Inc".
constexpr auto companies = std::to_array<std::string_view>(
    {"inc", "llc", "ltd", "limited", "co", "corp", "company", "llp",  "lp",   "plc", "gmbh",
     "sa",  "sas", "spa", "srl",     "bv", "pty",  "pte",     "sons", "bros", "jr",  "sr"});

bool isTown(std::string_view words) {
  std::string folded = names::foldedName(words);
  std::erase(folded, ' ');
  return std::ranges::binary_search(towns, folded);
}

// The name without its last word; empty for one word.
std::string_view withoutLast(std::string_view name) {
  const std::size_t blank = name.find_last_of(' ');
  return blank == std::string_view::npos ? std::string_view() : name.substr(0, blank);
}

std::string_view lastWord(std::string_view name) {
  const std::size_t blank = name.find_last_of(' ');
  return blank == std::string_view::npos ? name : name.substr(blank + 1);
}

std::string_view trimmed(std::string_view name) {
  while (!name.empty() && (name.back() == ' ' || name.back() == ',')) name.remove_suffix(1);
  return name;
}

// `name` without a town of one or two words at its end.
std::string_view withoutTownAlone(std::string_view name) {
  const std::string_view front = withoutLast(name);
  if (front.empty()) return name;
  if (isTown(lastWord(name))) return trimmed(front);
  const std::string_view shorter = withoutLast(front);
  if (!shorter.empty() && isTown(name.substr(shorter.size() + 1))) return trimmed(shorter);
  return name;
}

bool isState(std::string_view word) { return std::ranges::find(states, word) != states.end(); }

bool isCountry(std::string_view word) {
  return std::ranges::find(countries, word) != countries.end();
}

// Whether the text behind a comma is a place: a town of the table, a capitalised word, or words
// with a state or country behind them: " SEEB", " AUSTIN TX".
bool isPlace(std::string_view part) {
  while (part.starts_with(' ')) part.remove_prefix(1);
  if (isTown(part)) return true;
  const bool letters = part.find_first_of("0123456789.&'*/-") == std::string_view::npos;
  const std::string_view last = lastWord(part);
  if (last.size() != part.size()) return letters && (isState(last) || isCountry(last));
  constexpr std::size_t shortest = 4;
  const bool capital = names::caseOfFirst(part) == names::LetterCase::capital;
  const std::string folded = names::foldedName(part);
  return capital && letters && part.size() >= shortest &&
         std::ranges::find(companies, folded) == companies.end();
}

}  // namespace

std::string_view withoutTown(std::string_view name) {
  const std::size_t slash = name.find_last_of('/');
  if (slash != std::string_view::npos && slash > 0 && isTown(name.substr(slash + 1))) {
    return trimmed(name.substr(0, slash));
  }
  const std::string_view front = withoutLast(name);
  const std::size_t comma = name.find_last_of(',');
  const bool apart = comma != std::string_view::npos && comma + 1 < name.size() && comma > 0;
  if (apart) return isPlace(name.substr(comma + 1)) ? trimmed(name.substr(0, comma)) : name;
  const std::string_view last = lastWord(name);
  if (front.empty() || !(isCountry(last) || isState(last))) return name;
  const std::string_view rest = withoutTownAlone(trimmed(front));
  return rest.size() == front.size() ? name : rest;
}

}  // namespace kivo::recognition
