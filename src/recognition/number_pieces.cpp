#include "recognition/number_pieces.h"

#include <algorithm>
#include <array>

namespace kivo::recognition {

namespace {

// These three are false for a place outside of `items`, such as the one in front of the first.
bool isNumber(const Items& items, std::size_t at) {
  return at < items.size() && items[at].kind == Item::Kind::number;
}

bool isMark(const Items& items, std::size_t at, std::string_view marks) {
  return at < items.size() && items[at].kind == Item::Kind::mark && items[at].text.size() == 1 &&
         marks.find(items[at].text.front()) != std::string_view::npos;
}

bool isPlain(const std::string& digits, std::size_t longest) {
  return digits.size() <= longest && digits.find_first_not_of("0123456789") == std::string::npos;
}

// "21.11.2026" is one item, since its points separate digits.
bool isDottedDate(const std::string& digits) {
  const std::size_t first = digits.find('.');
  const std::size_t last = digits.rfind('.');
  if (first == std::string::npos || first == last || first > 2 || first == 0) return false;
  const std::size_t year = digits.size() - last - 1;
  const std::size_t month = last - first - 1;
  return month >= 1 && month <= 2 && (year == 2 || year == 4) &&
         digits.find(',') == std::string::npos;
}

// "10:10 09.03": a day and a month behind a time of day.
bool isDayBehindTime(const Items& items, std::size_t at) {
  constexpr std::size_t length = 5;
  const std::string& text = items[at].text;
  return text.size() == length && text[2] == '.' && isNumber(items, at - 1) &&
         isMark(items, at - 2, ":") && items[at - 1].glued && isNumber(items, at - 3);
}

bool isJoinedPiece(const Items& items, std::size_t at) {
  const Item& item = items[at];
  // "برداشت-500,000": here "-" is a sign, since only amounts have groups of digits.
  if (isMark(items, at - 1, "-") && item.text.find(',') != std::string::npos) return false;
  const bool before = item.glued && isMark(items, at - 1, ":/-_@.") && items[at - 1].glued &&
                      (isNumber(items, at - 2) ||
                       (items[at - 2].kind == Item::Kind::word && !isMark(items, at - 1, ":.")));
  const bool after = isMark(items, at + 1, ":/-_@") && items[at + 1].glued &&
                     at + 2 < items.size() && items[at + 2].glued &&
                     (isNumber(items, at + 2) ||
                      (items[at + 2].kind == Item::Kind::word && !isMark(items, at + 1, ":")));
  return before || after;
}

// "برداشت620,000", "余额1138.00": some banks leave out the blank and the currency.
bool isAmountBehindWord(const Items& items, std::size_t at) {
  const std::string& word = items[at - 1].text;
  const std::string& amount = items[at].text;
  const bool arabic = word.front() >= '\xD8' && word.front() <= '\xDB';
  return (arabic && amount.find(',') != std::string::npos) ||
         (isUnspaced(word) && amount.find_first_of(".,") != std::string::npos);
}

bool isMasked(const Items& items, std::size_t at) {
  const Item& item = items[at];
  const bool before = item.glued && at > 0 && !isAmountBehindWord(items, at) &&
                      (items[at - 1].kind == Item::Kind::word || isMark(items, at - 1, "*#") ||
                       (items[at - 1].kind == Item::Kind::mark && items[at - 1].text.size() > 1));
  const bool after =
      at + 1 < items.size() && items[at + 1].glued &&
      (isMark(items, at + 1, "*#%") || (items[at + 1].kind == Item::Kind::word &&
                                        items[at + 1].text != "dr" && items[at + 1].text != "cr"));
  const bool share = isMark(items, at + 1, "%");
  const bool dots =
      at > 1 && item.glued && isMark(items, at - 1, ".") && isMark(items, at - 2, ".");
  return before || after || share || dots;
}

}  // namespace

bool isMonth(const Items& items, std::size_t at) {
  constexpr auto months = std::to_array<std::string_view>(
      {"jan",   "feb",   "mar",   "apr",    "may",    "jun",    "jul",    "aug",  "sep",   "oct",
       "nov",   "dec",   "ene",   "fev",    "mai",    "abr",    "ago",    "dez",  "dic",   "set",
       "janv",  "juin",  "juil",  "aout",   "sept",   "يناير",  "فبراير", "مارس", "ابريل", "مايو",
       "يونيو", "يوليو", "اغسطس", "سبتمبر", "اكتوبر", "نوفمبر", "ديسمبر", "янв",  "фев",   "мар",
       "апр",   "мая",   "июн",   "июл",    "авг",    "сен",    "окт",    "ноя",  "дек"});
  constexpr auto longMonths = std::to_array<std::string_view>(
      {"january",   "february", "march",      "april",     "june",      "july",      "august",
       "september", "october",  "november",   "december",  "января",    "февраля",   "марта",
       "апреля",    "июня",     "июля",       "августа",   "сентября",  "октября",   "ноября",
       "декабря",   "січня",    "лютого",     "березня",   "квітня",    "травня",    "червня",
       "липня",     "серпня",   "вересня",    "жовтня",    "листопада", "грудня",    "қаңтар",
       "ақпан",     "наурыз",   "сәуір",      "мамыр",     "маусым",    "шілде",     "тамыз",
       "қыркүиек",  "қазан",    "қараша",     "желтоқсан", "enero",     "febrero",   "marzo",
       "abril",     "junio",    "septiembre", "octubre",   "noviembre", "diciembre", "janeiro",
       "fevereiro", "maio",     "junho",      "julho",     "setembro",  "outubro",   "novembro",
       "dezembro",  "janvier",  "fevrier",    "avril",     "juillet",   "aout",      "septembre",
       "octobre",   "novembre", "decembre",   "januar",    "februar",   "marz",      "oktober",
       "dezember",  "januari",  "februari",   "maret",     "agustus",   "desember",  "subat",
       "haziran",   "temmuz",   "agustos",    "aralik"});
  if (at >= items.size() || items[at].kind != Item::Kind::word) return false;
  const std::string& word = items[at].text;
  return std::find(months.begin(), months.end(), word) != months.end() ||
         std::find(longMonths.begin(), longMonths.end(), word) != longMonths.end();
}

bool isDatePiece(const Items& items, std::size_t at) {
  const Item& item = items[at];
  if (isDottedDate(item.text) || isDayBehindTime(items, at)) return true;
  if (!isPlain(item.text, 4)) return false;
  for (const std::string_view marks : {std::string_view("/"), std::string_view("-")}) {
    const auto joined = [&](std::size_t begin) {  // number, mark, number, mark, number
      for (std::size_t piece = begin; piece < begin + 5; ++piece) {
        const bool fits = (piece - begin) % 2 == 0
                              ? isNumber(items, piece) && isPlain(items[piece].text, 4)
                              : isMark(items, piece, marks);
        if (!fits || (piece > begin && !items[piece].glued)) return false;
      }
      return true;
    };
    if (joined(at) || (at >= 2 && joined(at - 2)) || (at >= 4 && joined(at - 4))) return true;
  }
  // "12/10": a day and a month without a year.
  const auto shortDate = [&](std::size_t begin) {
    return isNumber(items, begin) && isMark(items, begin + 1, "/") && isNumber(items, begin + 2) &&
           items[begin + 1].glued && items[begin + 2].glued && isPlain(items[begin].text, 2) &&
           isPlain(items[begin + 2].text, 2);
  };
  if (shortDate(at) || shortDate(at - 2)) return true;
  const bool colonAfter = isMark(items, at + 1, ":") && isNumber(items, at + 2) &&
                          items[at + 2].glued && items[at + 1].glued;
  const bool colonBefore =
      isMark(items, at - 1, ":") && isNumber(items, at - 2) && item.glued && items[at - 1].glued;
  if (isPlain(item.text, 2) && (colonAfter || colonBefore)) return true;
  // "21-Nov-2026", "21 Nov 2026", "Nov 21, 2026", "21 de abril de 2026".
  const auto skipped = [&](std::size_t index) {
    const bool de = index < items.size() && items[index].text == "de";
    return de || isMark(items, index, "-/,.'") ? 1U : 0U;
  };
  if (isMonth(items, at + 1 + skipped(at + 1)) && isPlain(item.text, 2)) return true;
  std::size_t back = at;
  back -= skipped(back - 1);
  if (isMonth(items, back - 1)) return true;
  return isNumber(items, back - 1) && isMonth(items, back - 2) && isPlain(item.text, 4) &&
         item.text.size() != 3;
}

void markPieces(Items& items) {
  for (std::size_t at = 0; at < items.size(); ++at) {
    if (items[at].kind != Item::Kind::number) continue;
    items[at].isPiece = isDatePiece(items, at) || isMasked(items, at) || isJoinedPiece(items, at);
  }
}

}  // namespace kivo::recognition
