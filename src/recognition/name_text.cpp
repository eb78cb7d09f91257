#include "recognition/name_text.h"

#include <algorithm>
#include <array>

#include "names/letter_case.h"
#include "recognition/shop_town.h"
#include "recognition/spelling.h"

namespace kivo::recognition {
namespace {

constexpr std::size_t longestName = 60;

// Words in a bank's narration that are not names: "UPI/P2M/4249/ORCHID MART".
constexpr auto channelWords = std::to_array<std::string_view>(
    {"upi",  "cr",  "dr",   "imps", "neft", "rtgs", "p2p", "p2a",  "p2m",   "p",    "a",
     "m",    "pos", "ecom", "atm",  "bil",  "inft", "mob", "ift",  "ach",   "ref",  "no",
     "xutr", "tg",  "y",    "n",    "nfs",  "inb",  "ib",  "trf",  "tfr",   "ftr",  "txn",
     "utr",  "rrn", "pay",  "card", "acct", "ac",   "to",  "from", "by",    "iban", "vpa",
     "inr",  "onl", "frm",  "ft",   "pmt",  "web",  "app", "ussd", "nip",   "csh",  "cash",
     "chq",  "mmt", "vps",  "ips",  "tpt",  "nach", "pur", "pymt", "purch", "prch"});

// Words that say how money moved, not to whom. A name has another word beside them.
constexpr auto commonWords = std::to_array<std::string_view>(
    {"type",        "maturity", "annual",     "tpe",      "atm",     "transfer", "salary",
     "loan",        "cash",     "withdrawal", "deposit",  "payment", "purchase", "airtime",
     "mob",         "bk",       "banking",    "mobile",   "sms",     "charge",   "charges",
     "fee",         "fees",     "emi",        "bank",     "online",  "app",      "smartapp",
     "eft",         "net",      "internet",   "interest", "rent",    "txn",      "refund",
     "reversal",    "agent",    "it",         "of",       "us",      "them",     "merchant",
     "cheque",      "check",    "savings",    "checking", "self",    "others",   "رقم",
     "transaction", "nil",      "na",         "vat",      "gst",     "tax",      "صراف",
     "الصراف",      "ماكينه",   "الماكينه",   "الي",      "الالي",   "الايداع",  "الشباك",
     "الاوتوماتيكي"});

// Whether the items are a bank's code or a reference rather than a name: "HRNB", "HRNBM8812".
bool isCode(const Items& items, std::size_t begin, std::size_t end) {
  constexpr std::size_t bankLetters = 4;
  const std::string& last = items[end - 1].text;
  if (last == "bank" || last == "mfb" || last == "microfinance") return true;
  if (end == begin + 1) return items[begin].capitals && items[begin].text.size() == bankLetters;
  return end == begin + 2 && items[begin].kind == Item::Kind::word &&
         items[begin + 1].kind == Item::Kind::number && items[begin + 1].glued;
}

}  // namespace

bool isChannelWord(std::string_view word) {
  return std::find(channelWords.begin(), channelWords.end(), word) != channelWords.end();
}

bool isOrdinaryWord(std::string_view word) {
  constexpr auto words = std::to_array<std::string_view>(
      {"card", "pay", "cash", "ref", "to", "from", "by", "no", "web", "app", "mob", "a"});
  return std::ranges::find(words, word) != words.end();
}

bool isRemoteChannel(std::string_view word) {
  constexpr auto channels =
      std::to_array<std::string_view>({"online", "internet", "mobile", "app", "smartapp", "eft"});
  return std::ranges::find(channels, word) != channels.end();
}

bool isPronoun(std::string_view word) {
  constexpr auto pronouns =
      std::to_array<std::string_view>({"we", "we've", "you", "you've", "i", "dear", "hi", "it"});
  return std::find(pronouns.begin(), pronouns.end(), word) != pronouns.end();
}

namespace {

// The name without a Turkish ending: "MIGROS'tan".
std::string_view withoutEnding(std::string_view name) {
  constexpr auto endings =
      std::to_array<std::string_view>({"dan", "den", "tan", "ten", "ndan", "nden", "da", "de", "ta",
                                       "te", "nda", "nde", "ya", "ye", "na", "ne", "nin", "nun"});
  const std::size_t mark = name.find_last_of('\'');
  const bool ends = mark != std::string_view::npos && mark > 1 &&
                    std::ranges::find(endings, name.substr(mark + 1)) != endings.end();
  return ends ? name.substr(0, name.find_last_not_of(' ', mark - 1) + 1) : name;
}

}  // namespace

std::string nameBetween(const AnalysedMessage& message, std::size_t begin, std::size_t end) {
  const Items& items = message.items;
  if (begin > 0 && begin < end && isMark(items[begin - 1], "'") && items[begin - 1].glued &&
      items[begin].glued) {
    ++begin;  // "18:40'da MIGROS"
  }
  if (begin >= end) return {};
  const bool point =
      end > begin + 2 && isMark(items[end - 1], ".") && isInitial(items[end - 2]) &&
      end < items.size() && items[end].kind == Item::Kind::word &&
      names::caseOfFirst(message.text.substr(items[end].begin)) == names::LetterCase::small;
  if (point) --end;  // "Anna K."
  const auto isNameWord = [](const Item& item) {
    return item.kind == Item::Kind::word && item.text.find_first_not_of('x') != std::string::npos &&
           std::find(commonWords.begin(), commonWords.end(), item.text) == commonWords.end() &&
           std::find(channelWords.begin(), channelWords.end(), item.text) == channelWords.end();
  };
  if (std::none_of(items.begin() + static_cast<std::ptrdiff_t>(begin),
                   items.begin() + static_cast<std::ptrdiff_t>(end), isNameWord)) {
    return {};
  }
  const std::string shown =
      shownPayee(message.text.substr(items[begin].begin, items[end - 1].end - items[begin].begin));
  std::string name(withoutEnding(withoutTown(shown)));
  constexpr auto shortened =
      std::to_array<std::string_view>({"co", "inc", "ltd", "ent", "corp", "jr", "sr", "bros"});
  const bool isShort =
      std::find(shortened.begin(), shortened.end(), items[end - 1].text) != shortened.end();
  const bool goesOn = end + 1 < items.size() && isMark(items[end], ".") &&
                      message.text[items[end + 1].begin] >= 'a' &&
                      message.text[items[end + 1].begin] <= 'z';
  const bool initial = end > begin + 1 && end < items.size() && isInitial(items[end - 1]) &&
                       items[end - 2].kind != Item::Kind::number && isMark(items[end], ".") &&
                       items[end].glued;            // "Pedro Soto M."
  if ((isShort && goesOn) || initial) name += '.';  // "Puffin Coffee Co. with"
  return name;
}

std::string nameInNarration(const AnalysedMessage& message, std::size_t begin, std::size_t end) {
  const Items& items = message.items;
  std::string code;
  std::size_t piece = begin;
  for (std::size_t at = begin; at <= end; ++at) {
    const bool cut =
        at == end || isMark(items[at], "/") || (isMark(items[at], "-:*") && items[at].glued);
    if (!cut) continue;
    const auto isName = [&](std::size_t word) {
      return items[word].kind == Item::Kind::word && items[word].text.size() > 2 &&
             !isChannelWord(items[word].text) &&
             items[word].text.find_first_not_of('x') != std::string::npos;
    };
    bool named = false;
    for (std::size_t word = piece; word < at; ++word) named = named || isName(word);
    while (named && isChannelWord(items[piece].text)) ++piece;
    if (named) {
      std::string name = nameBetween(message, piece, at);
      if (!isCode(items, piece, at)) return name;
      if (code.empty()) code = std::move(name);
    }
    piece = at + 1;
  }
  return code;
}

std::string shownPayee(std::string_view name) {
  std::string line(name);
  std::replace_if(
      line.begin(), line.end(),
      [](char character) { return static_cast<unsigned char>(character) < ' '; }, ' ');
  constexpr std::string_view edges = " \"'*:-.,#;/_";
  const std::size_t begin = line.find_first_not_of(edges);
  if (begin == std::string::npos) return {};
  line.erase(0, begin);
  line.resize(wholeCharacters(line, longestName));
  const std::size_t last = line.find_last_not_of(edges) + 1;
  const std::size_t mask = std::min(line.find_first_not_of('*', last), line.size());
  constexpr std::size_t shortestMask = 2;
  line.erase(mask >= last + shortestMask ? mask : last);  // "MONA S****"
  return line;
}

bool namesLoan(const Items& items, std::size_t begin, std::size_t end) {
  constexpr std::size_t longestCode = 3;
  std::size_t at = end;
  while (at > begin && items[at - 1].text != "loan" && items[at - 1].text != "emi" &&
         (items[at - 1].kind != Item::Kind::word || items[at - 1].text.size() <= longestCode ||
          items[at - 1].text.find_first_not_of('x') == std::string::npos)) {
    --at;
  }
  return at > begin && (items[at - 1].text == "loan" || items[at - 1].text == "emi");
}

bool namesFee(const Items& items, std::size_t begin, std::size_t end) {
  constexpr auto words =
      std::to_array<std::string_view>({"charge", "charges", "chgs", "chg", "fee", "fees", "vat"});
  constexpr std::size_t near = 2;  // "Annual Debit Card Fee"
  for (std::size_t at = begin; at <= end + near && at < items.size(); ++at) {
    if (at > end && items[at].kind != Item::Kind::word) break;
    const bool word = std::ranges::find(words, items[at].text) != words.end();
    if (word && !items[at].named && !items[at].startsSentence) return true;
  }
  return false;
}

}  // namespace kivo::recognition
