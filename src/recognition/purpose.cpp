#include "recognition/purpose.h"

#include <algorithm>
#include <array>
#include <optional>

#include "names/letter_case.h"
#include "recognition/name_text.h"

namespace kivo::recognition {
namespace {

using money::Kind;

struct KnownPurpose {
  std::string_view word;
  std::string_view description;
  std::string_view category;
};

// By a folded word of the message.
constexpr auto knownPurposes = std::to_array<KnownPurpose>({
    {"loan", "Loan payment", "Loan"},
    {"mortgage", "Loan payment", "Loan"},
    {"installment", "Loan payment", "Loan"},
    {"instalment", "Loan payment", "Loan"},
    {"emi", "Loan payment", "Loan"},
    {"قسط", "Loan payment", "Loan"},
    {"قرض", "Loan payment", "Loan"},
    {"airtime", "Phone top-up", "Phone"},
    {"recharge", "Phone top-up", "Phone"},
    {"insurance", "Insurance", "Insurance"},
    {"premium", "Insurance", "Insurance"},
    {"electricity", "Electricity", "Utilities"},
    {"water", "Water", "Utilities"},
    {"كهرباء", "Electricity", "Utilities"},
    {"umeme", "Electricity", "Utilities"},
    {"listrik", "Electricity", "Utilities"},
    {"الهاتف", "Phone top-up", "Phone"},
    {"pulsa", "Phone top-up", "Phone"},
    {"rent", "Rent", "Rent"},
    {"maintenance", "Bank fee", "Fees"},
    {"charge", "", "Fees"},
    {"charges", "", "Fees"},
    {"chgs", "", "Fees"},
    {"chrg", "", "Fees"},
    {"fee", "", "Fees"},
    {"fees", "", "Fees"},
    {"levy", "", "Fees"},
    {"مصاريف", "", "Fees"},
    {"رسوم", "", "Fees"},
    {"عموله", "", "Fees"},
});

// Words of a salary that a longer wording may cover: "تم إضافة مرتبكم بمبلغ 9,000 إلى حسابكم".
constexpr auto salaries = std::to_array<std::string_view>(
    {"مرتب", "راتب", "اجره", "salary", "payroll", "wages", "salaire", "gehalt", "sueldo", "nomina",
     "salario", "stipendio", "maas", "gaji", "wynagrodzeni", "зарплат", "заробітн", "жалақы",
     "mshahara"});

// Words that say no more than that money moved, or whose.
constexpr auto generic =
    std::to_array<std::string_view>({"payment",      "payments",   "purchase",   "transaction",
                                     "txn",          "trx",        "debit",      "credit",
                                     "amount",       "amt",        "sum",        "transfer",
                                     "deposit",      "withdrawal", "account",    "acct",
                                     "acc",          "a",          "an",         "the",
                                     "your",         "ur",         "you",        "dear",
                                     "customer",     "value",      "total",      "card",
                                     "bank",         "this",       "that",       "alert",
                                     "we",           "it",         "successful", "pos",
                                     "atm",          "cash",       "online",     "of",
                                     "and",          "by",         "internet",   "mobile",
                                     "banking",      "a/c",        "c",          "ac",
                                     "recent",       "received",   "new",        "local",
                                     "international"});

bool isGeneric(std::string_view word) { return std::ranges::find(generic, word) != generic.end(); }

class NounPhrase {
 public:
  explicit NounPhrase(const AnalysedMessage& message)
      : message_(message), items_(message.items), at_(items_.size() + 1, nullptr) {
    for (const Found& wording : message.wordings) at_[wording.begin] = &wording;
  }

  // The first place with a phrase counts.
  [[nodiscard]] std::string found() const {
    for (const Found& wording : message_.wordings) {
      if (!wording.is(Marker::towards) && !wording.is(Marker::info)) continue;
      std::string phrase = shown(wording.end, endBehind(wording.end));
      if (!phrase.empty()) return phrase;
    }
    for (std::size_t at = 0; at < items_.size(); ++at) {
      if (items_[at].kind != Item::Kind::sum) continue;
      std::string phrase = inFrontOfSum(at);
      if (!phrase.empty()) return phrase;
    }
    for (const Found& wording : message_.wordings) {
      if (!wording.is(Move::debited) && !wording.is(Move::credited)) continue;
      std::string phrase = inFront(wording.begin);
      if (!phrase.empty()) return phrase;
    }
    return {};
  }

 private:
  // Words, and the marks within them: "SMS & maintenance", "Q1-charges".
  [[nodiscard]] bool goesOn(std::size_t at) const {
    const Item& item = items_[at];
    if (item.kind == Item::Kind::word) return true;
    return isMark(item, "&") || (isMark(item, "-'") && item.glued);
  }

  // Whether the wording at item `at` ends a phrase.
  [[nodiscard]] bool ends(std::size_t at) const {
    const Found* const wording = at_[at];
    if (wording == nullptr) return false;
    if (const Move* const move = wording->as<Move>()) {
      return movementOf(*move).strength >= Strength::verb;
    }
    // "Debit card issuance fee"
    const bool described = wording->is(Marker::own) && wording->end < items_.size() &&
                           items_[wording->end].kind == Item::Kind::word &&
                           !isArticleOrPronoun(items_[at].text);
    if (described) return false;
    const SumRole* const role = wording->as<SumRole>();
    return wording->as<Marker>() != nullptr || wording->as<Status>() != nullptr ||
           (role != nullptr && *role != SumRole::charge);
  }

  [[nodiscard]] std::size_t endBehind(std::size_t begin) const {
    std::size_t end = begin;
    const auto opens = [&](std::size_t at) {  // "for SMS CHARGES"
      return at == begin && at_[at] != nullptr && at_[at]->is(Marker::footer);
    };
    while (end < items_.size() && !(end > begin && items_[end].startsSentence) && goesOn(end) &&
           (opens(end) || !ends(end))) {
      ++end;
    }
    return end;
  }

  // "quarterly interest of INR 41.00"
  [[nodiscard]] std::string inFrontOfSum(std::size_t sum) const {
    const bool of = sum > 0 && items_[sum - 1].text == "of" && !items_[sum].startsSentence;
    return of ? inFront(sum - 1) : std::string();
  }

  // The phrase between the begin of a sentence, or a mark, and item `end`.
  [[nodiscard]] std::string inFront(std::size_t end) const {
    while (end > 0 && isAuxiliary(items_[end - 1].text)) --end;
    std::size_t begin = end;
    while (begin > 0 && !(begin < end && items_[begin].startsSentence) && goesOn(begin - 1) &&
           !ends(begin - 1)) {
      --begin;
    }
    const bool first = begin == 0 || items_[begin].startsSentence ||
                       isMark(items_[begin - 1], ":,") || items_[begin - 1].text == "your";
    return first ? shown(begin, end) : std::string();
  }

  [[nodiscard]] static bool isAuxiliary(std::string_view word) {
    constexpr auto auxiliaries =
        std::to_array<std::string_view>({"is", "was", "were", "has", "have", "been", "are"});
    return std::ranges::find(auxiliaries, word) != auxiliaries.end();
  }

  // The phrase, if it is short and says more than that money moved. Only Latin script: others have
  // no generic words here.
  [[nodiscard]] std::string shown(std::size_t begin, std::size_t end) const {
    constexpr std::size_t longest = 6;
    while (begin < end &&
           (isGeneric(items_[begin].text) && isArticleOrPronoun(items_[begin].text))) {
      ++begin;
    }
    while (end > begin && items_[end - 1].kind == Item::Kind::mark) --end;
    if (begin >= end || end - begin > longest) return {};
    const bool latin = std::all_of(itemAt(begin), itemAt(end), [](const Item& item) {
      return static_cast<unsigned char>(item.text.front()) < 0x80;
    });
    const bool telling = std::any_of(itemAt(begin), itemAt(end), [](const Item& item) {
      constexpr std::size_t shortest = 3;
      return item.kind == Item::Kind::word && item.text.size() >= shortest &&
             !isGeneric(item.text) && !isChannelWord(item.text);
    });
    if (!latin || !telling) return {};
    std::string phrase = shownPayee(
        message_.text.substr(items_[begin].begin, items_[end - 1].end - items_[begin].begin));
    if (phrase.front() >= 'a' && phrase.front() <= 'z') {
      phrase.front() = static_cast<char>(phrase.front() - 'a' + 'A');
    }
    return phrase;
  }

  [[nodiscard]] static bool isArticleOrPronoun(std::string_view word) {
    constexpr auto words =
        std::to_array<std::string_view>({"a", "an", "the", "your", "ur", "of", "this"});
    return std::ranges::find(words, word) != words.end();
  }

  [[nodiscard]] Items::const_iterator itemAt(std::size_t at) const {
    return items_.begin() + static_cast<std::ptrdiff_t>(at);
  }

  const AnalysedMessage& message_;
  const Items& items_;
  std::vector<const Found*> at_;  // for each item, the wording that begins there, or null
};

}  // namespace

bool speaksOfSalary(const AnalysedMessage& message) {
  return std::ranges::any_of(message.items, [](const Item& item) {
    return !item.named && std::ranges::any_of(salaries, [&](std::string_view word) {
      return item.text.starts_with(word);
    });
  });
}

Purpose purposeOf(const AnalysedMessage& message, const Movement& naming) {
  constexpr auto plain =
      std::to_array<Move>({Move::paid, Move::payment, Move::debited, Move::debit, Move::fee,
                           Move::credited, Move::credit, Move::deposit});
  Purpose purpose;
  if (std::ranges::find(plain, naming.move) != plain.end()) {
    purpose.description = NounPhrase(message).found();
  }
  if (naming.kind == Kind::income && speaksOfSalary(message)) {
    return {.description = "Salary", .category = "Salary"};
  }
  if (naming.kind != Kind::expense || !naming.category.empty()) return purpose;
  for (const Item& item : message.items) {
    const auto* const known = std::ranges::find(knownPurposes, item.text, &KnownPurpose::word);
    if (item.kind != Item::Kind::word || known == knownPurposes.end()) continue;
    if (purpose.description.empty()) purpose.description = known->description;
    purpose.category = known->category;
    break;
  }
  return purpose;
}

}  // namespace kivo::recognition
