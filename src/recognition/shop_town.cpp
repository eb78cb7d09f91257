#include "recognition/shop_town.h"

#include <algorithm>
#include <array>
#include <string>

#include "names/name_fold.h"

namespace kivo::recognition {
namespace {

// Folded, without blanks.
constexpr auto towns = std::to_array<std::string_view>(
    {"cairo",      "alexandria", "giza",       "mansoura",   "tanta",        "hurghada",
     "luxor",      "aswan",      "dubai",      "abudhabi",   "sharjah",      "ajman",
     "riyadh",     "jeddah",     "dammam",     "khobar",     "makkah",       "mecca",
     "medina",     "madinah",    "kuwait",     "hawally",    "salmiya",      "doha",
     "manama",     "muscat",     "salalah",    "amman",      "irbid",        "zarqa",
     "beirut",     "baghdad",    "basra",      "erbil",      "damascus",     "tripoli",
     "benghazi",   "tunis",      "sfax",       "algiers",    "oran",         "casablanca",
     "rabat",      "marrakech",  "fes",        "tangier",    "agadir",       "khartoum",
     "sanaa",      "aden",       "mumbai",     "delhi",      "bangalore",    "bengaluru",
     "chennai",    "kolkata",    "hyderabad",  "pune",       "ahmedabad",    "gurgaon",
     "gurugram",   "noida",      "jaipur",     "kochi",      "karachi",      "lahore",
     "islamabad",  "rawalpindi", "peshawar",   "faisalabad", "multan",       "dhaka",
     "chittagong", "chattogram", "sylhet",     "colombo",    "kandy",        "galle",
     "kathmandu",  "pokhara",    "lagos",      "abuja",      "ikeja",        "ibadan",
     "kano",       "accra",      "kumasi",     "nairobi",    "mombasa",      "kisumu",
     "kampala",    "dodoma",     "arusha",     "addisababa", "johannesburg", "capetown",
     "durban",     "pretoria",   "sandton",    "harare",     "lusaka",       "windhoek",
     "gaborone",   "kigali",     "manila",     "cebu",       "makati",       "davao",
     "quezon",     "jakarta",    "surabaya",   "bandung",    "kualalumpur",  "penang",
     "singapore",  "bangkok",    "hanoi",      "saigon",     "hongkong",     "kowloon",
     "macau",      "taipei",     "tokyo",      "osaka",      "seoul",        "busan",
     "beijing",    "shanghai",   "shenzhen",   "guangzhou",  "london",       "manchester",
     "birmingham", "leeds",      "glasgow",    "edinburgh",  "dublin",       "cork",
     "galway",     "paris",      "lyon",       "marseille",  "berlin",       "munich",
     "hamburg",    "frankfurt",  "vienna",     "zurich",     "geneva",       "rome",
     "milan",      "madrid",     "barcelona",  "lisbon",     "porto",        "amsterdam",
     "brussels",   "istanbul",   "ankara",     "izmir",      "moscow",       "kyiv",
     "almaty",     "astana",     "tashkent",   "baku",       "tbilisi",      "yerevan",
     "warsaw",     "prague",     "athens",     "toronto",    "montreal",     "vancouver",
     "calgary",    "ottawa",     "sydney",     "melbourne",  "brisbane",     "perth",
     "adelaide",   "auckland",   "wellington", "saopaulo",   "riodejaneiro", "bogota",
     "medellin",   "lima",       "quito",      "santiago",   "buenosaires",  "maputo",
     "luanda",     "dakar",      "abidjan",    "القاهره",    "الاسكندريه",   "الجيزه",
     "الرياض",     "جده",        "الدمام",     "مكه",        "المدينه",      "دبي",
     "ابوظبي",     "الشارقه",    "الكويت",     "الدوحه",     "المنامه",      "مسقط",
     "عمان",       "بيروت",      "بغداد",      "البصره",     "اربيل",        "دمشق",
     "تونس",       "الجزائر",    "الدار",      "الرباط",     "مراكش"});

constexpr auto countries = std::to_array<std::string_view>(
    {"AE", "AT", "AU", "BD", "BE", "BH", "BR", "CA", "CH", "CN", "DE", "DK", "EG",
     "ES", "ET", "FR", "GB", "GH", "GR", "HK", "ID", "IE", "IN", "IQ", "IT", "JO",
     "JP", "KE", "KR", "KW", "KZ", "LB", "LK", "LY", "MA", "MY", "MZ", "NG", "NL",
     "NO", "NP", "NZ", "OM", "PH", "PK", "PL", "PT", "QA", "RU", "SA", "SE", "SG",
     "TH", "TN", "TR", "TW", "TZ", "UA", "UG", "UK", "US", "UZ", "VN", "ZA", "ZM"});

bool isTown(std::string_view words) {
  std::string folded = names::foldedName(words);
  std::erase(folded, ' ');
  return std::ranges::find(towns, folded) != towns.end();
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

}  // namespace

std::string_view withoutTown(std::string_view name) {
  const std::string_view front = withoutLast(name);
  const bool coded =
      !front.empty() && std::ranges::find(countries, lastWord(name)) != countries.end();
  if (coded) {
    const std::string_view rest = withoutTownAlone(trimmed(front));
    return rest.size() == front.size() ? name : rest;
  }
  const std::size_t comma = name.find_last_of(',');
  const bool apart = comma != std::string_view::npos && comma + 1 < name.size() && comma > 0;
  return apart && isTown(name.substr(comma + 1)) ? trimmed(name.substr(0, comma)) : name;
}

}  // namespace kivo::recognition
