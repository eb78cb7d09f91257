#include "recognition/shop_town.h"

#include <algorithm>
#include <array>
#include <string>

#include "names/letter_case.h"
#include "names/name_fold.h"

namespace kivo::recognition {
namespace {

// Folded, without blanks.
constexpr auto towns = std::to_array<std::string_view>(
    {"cairo",         "alexandria",   "giza",          "mansoura",      "tanta",
     "hurghada",      "luxor",        "aswan",         "dubai",         "abudhabi",
     "sharjah",       "ajman",        "riyadh",        "jeddah",        "dammam",
     "khobar",        "makkah",       "mecca",         "medina",        "madinah",
     "kuwait",        "hawally",      "salmiya",       "doha",          "manama",
     "muscat",        "salalah",      "amman",         "irbid",         "zarqa",
     "beirut",        "baghdad",      "basra",         "erbil",         "damascus",
     "tripoli",       "benghazi",     "tunis",         "sfax",          "algiers",
     "oran",          "casablanca",   "rabat",         "marrakech",     "fes",
     "tangier",       "agadir",       "khartoum",      "sanaa",         "aden",
     "mumbai",        "delhi",        "bangalore",     "bengaluru",     "chennai",
     "kolkata",       "hyderabad",    "pune",          "ahmedabad",     "gurgaon",
     "gurugram",      "noida",        "jaipur",        "kochi",         "karachi",
     "lahore",        "islamabad",    "rawalpindi",    "peshawar",      "faisalabad",
     "multan",        "dhaka",        "chittagong",    "chattogram",    "sylhet",
     "colombo",       "kandy",        "galle",         "kathmandu",     "pokhara",
     "lagos",         "abuja",        "ikeja",         "ibadan",        "kano",
     "accra",         "kumasi",       "nairobi",       "mombasa",       "kisumu",
     "kampala",       "dodoma",       "arusha",        "addisababa",    "johannesburg",
     "capetown",      "durban",       "pretoria",      "sandton",       "harare",
     "lusaka",        "windhoek",     "gaborone",      "kigali",        "manila",
     "cebu",          "makati",       "davao",         "quezon",        "jakarta",
     "surabaya",      "bandung",      "kualalumpur",   "penang",        "singapore",
     "bangkok",       "hanoi",        "saigon",        "hongkong",      "kowloon",
     "macau",         "taipei",       "tokyo",         "osaka",         "seoul",
     "busan",         "beijing",      "shanghai",      "shenzhen",      "guangzhou",
     "london",        "manchester",   "birmingham",    "leeds",         "glasgow",
     "edinburgh",     "dublin",       "cork",          "galway",        "paris",
     "lyon",          "marseille",    "berlin",        "munich",        "hamburg",
     "frankfurt",     "vienna",       "zurich",        "geneva",        "rome",
     "milan",         "madrid",       "barcelona",     "lisbon",        "porto",
     "amsterdam",     "brussels",     "istanbul",      "ankara",        "izmir",
     "moscow",        "kyiv",         "almaty",        "astana",        "tashkent",
     "baku",          "tbilisi",      "yerevan",       "warsaw",        "prague",
     "athens",        "toronto",      "montreal",      "vancouver",     "calgary",
     "ottawa",        "sydney",       "melbourne",     "brisbane",      "perth",
     "adelaide",      "auckland",     "wellington",    "saopaulo",      "riodejaneiro",
     "bogota",        "medellin",     "lima",          "quito",         "santiago",
     "buenosaires",   "maputo",       "luanda",        "dakar",         "abidjan",
     "القاهره",       "الاسكندريه",   "الجيزه",        "الرياض",        "جده",
     "الدمام",        "مكه",          "المدينه",       "دبي",           "ابوظبي",
     "الشارقه",       "الكويت",       "الدوحه",        "المنامه",       "مسقط",
     "عمان",          "بيروت",        "بغداد",         "البصره",        "اربيل",
     "دمشق",          "تونس",         "الجزائر",       "الدار",         "الرباط",
     "مراكش",         "hawalli",      "jahra",         "farwaniya",     "fahaheel",
     "mangaf",        "ahmadi",       "rumaithiya",    "khiran",        "seeb",
     "sohar",         "nizwa",        "sur",           "barka",         "ibri",
     "ruwi",          "bowsher",      "alain",         "fujairah",      "rasalkhaimah",
     "ummalquwain",   "deira",        "jumeirah",      "buraidah",      "tabuk",
     "abha",          "taif",         "yanbu",         "hofuf",         "jubail",
     "najran",        "hail",         "khamismushait", "wakrah",        "lusail",
     "alrayyan",      "muharraq",     "riffa",         "isatown",       "sitra",
     "madinaty",      "nasrcity",     "newcairo",      "maadi",         "heliopolis",
     "zamalek",       "sheikhzayed",  "october",       "portsaid",      "suez",
     "ismailia",      "zagazig",      "damietta",      "sohag",         "minya",
     "asyut",         "nugegoda",     "dehiwala",      "moratuwa",      "negombo",
     "jaffna",        "kurunegala",   "matara",        "nagpur",        "indore",
     "surat",         "lucknow",      "kanpur",        "bhopal",        "patna",
     "coimbatore",    "thane",        "nashik",        "vadodara",      "ludhiana",
     "agra",          "madurai",      "mysore",        "mysuru",        "mangalore",
     "visakhapatnam", "vijayawada",   "chandigarh",    "mohali",        "faridabad",
     "ghaziabad",     "trivandrum",   "calicut",       "sialkot",       "gujranwala",
     "quetta",        "khulna",       "rajshahi",      "narayanganj",   "gazipur",
     "lalitpur",      "bhaktapur",    "biratnagar",    "lekki",         "victoriaisland",
     "portharcourt",  "benin",        "enugu",         "kaduna",        "jos",
     "tema",          "takoradi",     "tamale",        "nakuru",        "eldoret",
     "thika",         "westlands",    "entebbe",       "jinja",         "mbarara",
     "daressalaam",   "mwanza",       "blantyre",      "lilongwe",      "ndola",
     "kitwe",         "bulawayo",     "maseru",        "mbabane",       "randburg",
     "soweto",        "roodepoort",   "bloemfontein",  "portelizabeth", "gqeberha",
     "polokwane",     "nelspruit",    "centurion",     "midrand",       "umhlanga",
     "stellenbosch",  "pasig",        "taguig",        "caloocan",      "mandaluyong",
     "paranaque",     "baguio",       "iloilo",        "bandar",        "petalingjaya",
     "shahalam",      "johorbahru",   "ipoh",          "kuching",       "melaka",
     "subang",        "cyberjaya",    "depok",         "bekasi",        "tangerang",
     "semarang",      "medan",        "makassar",      "denpasar",      "yogyakarta",
     "malang",        "chiangmai",    "phuket",        "pattaya",       "danang",
     "haiphong",      "cantho",       "phnompenh",     "siemreap",      "vientiane",
     "yangon",        "mandalay",     "newyork",       "losangeles",    "chicago",
     "houston",       "phoenix",      "philadelphia",  "sanantonio",    "sandiego",
     "dallas",        "sanjose",      "austin",        "jacksonville",  "columbus",
     "charlotte",     "indianapolis", "seattle",       "denver",        "boston",
     "nashville",     "portland",     "lasvegas",      "memphis",       "louisville",
     "baltimore",     "milwaukee",    "albuquerque",   "tucson",        "fresno",
     "sacramento",    "atlanta",      "miami",         "orlando",       "tampa",
     "oakland",       "minneapolis",  "cleveland",     "pittsburgh",    "cincinnati",
     "detroit",       "edmonton",     "winnipeg",      "halifax",       "regina",
     "saskatoon",     "hamilton",     "mississauga",   "brampton",      "surrey",
     "burnaby",       "victoria",     "kelowna",       "canberra",      "hobart",
     "darwin",        "newcastle",    "geelong",       "parramatta",    "newtown",
     "christchurch",  "dunedin",      "tauranga",      "bristol",       "liverpool",
     "sheffield",     "leicester",    "cardiff",       "belfast",       "nottingham",
     "southampton",   "oxford",       "cambridge",     "brighton",      "york",
     "bath",          "reading",      "aberdeen",      "dundee",        "inverness",
     "limerick",      "waterford",    "swords",        "lille",         "toulouse",
     "bordeaux",      "nantes",       "nice",          "strasbourg",    "rennes",
     "koln",          "cologne",      "stuttgart",     "dusseldorf",    "dortmund",
     "essen",         "leipzig",      "dresden",       "hannover",      "bremen",
     "nurnberg",      "salzburg",     "graz",          "linz",          "basel",
     "bern",          "lausanne",     "napoli",        "naples",        "torino",
     "turin",         "bologna",      "firenze",       "florence",      "venezia",
     "valencia",      "sevilla",      "malaga",        "bilbao",        "zaragoza",
     "coimbra",       "braga",        "faro",          "rotterdam",     "utrecht",
     "eindhoven",     "antwerp",      "gent",          "liege",         "bursa",
     "antalya",       "adana",        "konya",         "kazan",         "novosibirsk",
     "samara",        "minsk",        "kharkiv",       "odesa",         "lviv",
     "dnipro",        "shymkent",     "bishkek",       "dushanbe",      "ashgabat",
     "chisinau",      "bucharest",    "sofia",         "belgrade",      "zagreb",
     "ljubljana",     "sarajevo",     "skopje",        "tirana",        "podgorica",
     "pristina",      "bratislava",   "budapest",      "krakow",        "gdansk",
     "wroclaw",       "poznan",       "lodz",          "brno",          "ostrava",
     "vilnius",       "kaunas",       "riga",          "tallinn",       "tartu",
     "helsinki",      "espoo",        "tampere",       "stockholm",     "goteborg",
     "malmo",         "oslo",         "bergen",        "trondheim",     "copenhagen",
     "kobenhavn",     "aarhus",       "reykjavik",     "luxembourg",    "valletta",
     "nicosia",       "limassol",     "thessaloniki",  "patras",        "guadalajara",
     "monterrey",     "puebla",       "cancun",        "tijuana",       "cali",
     "barranquilla",  "cartagena",    "callao",        "arequipa",      "trujillo",
     "guayaquil",     "cuenca",       "valparaiso",    "concepcion",    "cordoba",
     "rosario",       "mendoza",      "montevideo",    "asuncion",      "lapaz",
     "santacruz",     "caracas",      "panama",        "sanjuan",       "guatemala",
     "tegucigalpa",   "managua",      "sansalvador",   "santodomingo",  "kingston",
     "nassau",        "bridgetown",   "portofspain",   "brasilia",      "salvador",
     "fortaleza",     "recife",       "portoalegre",   "curitiba",      "belohorizonte",
     "manaus",        "campinas",     "beira",         "nampula",       "benguela",
     "lobito",        "huambo",       "praia",         "bissau",        "thies",
     "douala",        "yaounde",      "libreville",    "kinshasa",      "lubumbashi",
     "brazzaville",   "bamako",       "ouagadougou",   "niamey",        "ndjamena",
     "nouakchott",    "cotonou",      "lome",          "conakry",       "freetown",
     "monrovia",      "banjul",       "antananarivo",  "portlouis",     "male",
     "thimphu",       "kabul",        "herat",         "tehran",        "isfahan",
     "shiraz",        "mashhad",      "tabriz",        "mosul",         "najaf",
     "karbala",       "sulaymaniyah", "aqaba",         "tyre",          "saida",
     "hama",          "homs",         "aleppo",        "taiz",          "ibb",
     "hodeidah",      "omdurman",     "nablus",        "ramallah",      "gaza",
     "hebron",        "telaviv",      "haifa",         "jerusalem"});

constexpr auto countries = std::to_array<std::string_view>(
    {"AE", "AT", "AU", "BD", "BE", "BH", "BR", "CA", "CH", "CN", "DE", "DK", "EG",
     "ES", "ET", "FR", "GB", "GH", "GR", "HK", "ID", "IE", "IN", "IQ", "IT", "JO",
     "JP", "KE", "KR", "KW", "KZ", "LB", "LK", "LY", "MA", "MY", "MZ", "NG", "NL",
     "NO", "NP", "NZ", "OM", "PH", "PK", "PL", "PT", "QA", "RU", "SA", "SE", "SG",
     "TH", "TN", "TR", "TW", "TZ", "UA", "UG", "UK", "US", "UZ", "VN", "ZA", "ZM"});

// The states of the United States, Canada's provinces and Australia's states.
constexpr auto states = std::to_array<std::string_view>(
    {"AL", "AK", "AZ", "AR", "CA", "CO", "CT", "DE", "DC", "FL", "GA",  "HI",  "ID", "IL", "IN",
     "IA", "KS", "KY", "LA", "ME", "MD", "MA", "MI", "MN", "MS", "MO",  "MT",  "NE", "NV", "NH",
     "NJ", "NM", "NY", "NC", "ND", "OH", "OK", "OR", "PA", "RI", "SC",  "SD",  "TN", "TX", "UT",
     "VT", "VA", "WA", "WV", "WI", "WY", "ON", "QC", "BC", "AB", "NSW", "VIC", "QLD"});

// Behind a comma these are no towns: "Fern Foods, Inc".
constexpr auto companies = std::to_array<std::string_view>(
    {"inc", "llc", "ltd", "limited", "co", "corp", "company", "llp",  "lp",   "plc", "gmbh",
     "sa",  "sas", "spa", "srl",     "bv", "pty",  "pte",     "sons", "bros", "jr",  "sr"});

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
