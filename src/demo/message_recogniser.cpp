#include "demo/message_recogniser.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <optional>
#include <span>
#include <vector>

#include "demo/merchant_categories.h"
#include "demo/message_amounts.h"
#include "demo/message_payee.h"
#include "demo/message_text.h"

namespace kivo::MessageRecogniser {
namespace {

using Kind = Transaction::Kind;
constexpr std::size_t nowhere = std::string_view::npos;
constexpr std::size_t longestMessage = 4096;

// All words are in folded spelling.
constexpr std::string_view codeWords[] = {
    "otp",           "one-time",        "one time",   "passcode",    "verification code",
    "security code", "activation code", "رمز التحقق", "رمز التاكيد", "رمز المرور",
    "كلمه السر",     "كلمه المرور"};
constexpr std::string_view sharingWords[] = {"share", "disclose", "تشارك", "تفصح", "مشاركه"};
constexpr std::string_view declinedWords[] = {
    "declined", "rejected",     "refused",       "insufficient", "unsuccessful",
    "failed",   "not approved", "not completed", "could not be", "مرفوض~",
    "رفض",      "لم تتم",       "غير كاف",       "تعذر",         "فشل~"};
constexpr std::string_view paymentWords[] = {"transaction", "purchase",   "payment",
                                             "card",        "withdrawal", "transfer",
                                             "عمليه",       "بطاق",       "شراء"};
// Sentences about what might be, or is still to come.
constexpr std::string_view offerWords[] = {
    "enjoy",        "apply now",    "% off",    "% discount",    "up to",       "don't miss",
    "chance to",    "win up",       "t&c~",     "terms",         "offer ends",  "offer valid",
    "limited time", "pre-approved", "eligible", "get your",      "instalment~", "installment~",
    "is due",       "due on",       "due date", "total due",     "amount due",  "minimum payment",
    "statement",    "reminder",     "will be",  "to be debited", "requested",   "استمتع",
    "اربح",         "عرض",          "العرض",    "عروض",          "احصل",        "سيتم",
    "مستحق",        "الحد الادني",  "تذكير"};
constexpr std::string_view doneWords[] = {"debited",  "credited", "deducted", "was",
                                          "has been", "تم ",      "تمت "};
constexpr std::string_view balanceWords[] = {
    "bal", "balance", "available", "avail", "limit", "outstanding", "رصيد", "المتاح", "الحد"};
constexpr std::string_view feeWords[] = {"fee",        "fees", "vat",   "tax",
                                         "commission", "رسوم", "عموله", "ضريبه"};

// A word by which a message says that money moved, and what it is called when nothing else is told.
struct Movement {
  std::string_view word;
  Kind kind;
  std::string_view description;
  std::string_view category;
};

// These decide wherever they stand.
constexpr Movement decidingMovements[] = {
    {"refund~", Kind::income, "Refund", "Refund"},
    {"revers~", Kind::income, "Refund", "Refund"},
    {"cashback", Kind::income, "Cashback", "Refund"},
    {"استرداد", Kind::income, "Refund", "Refund"},
    {"استرجاع", Kind::income, "Refund", "Refund"},
    {"salary", Kind::income, "Salary", "Salary"},
    {"payroll", Kind::income, "Salary", "Salary"},
    {"راتب", Kind::income, "Salary", "Salary"},
    {"مرتب", Kind::income, "Salary", "Salary"},
    {"between your accounts", Kind::expense, "Own transfer", "__system_transfer__"},
    {"to your own account", Kind::expense, "Own transfer", "__system_transfer__"},
    {"بين حساباتك", Kind::expense, "Own transfer", "__system_transfer__"},
    {"credit card payment", Kind::expense, "Credit card", "Credit Card Settlement"},
    {"payment to your credit card", Kind::expense, "Credit card", "Credit Card Settlement"},
    {"towards your credit card", Kind::expense, "Credit card", "Credit Card Settlement"},
    {"سداد بطاق", Kind::expense, "Credit card", "Credit Card Settlement"},
    {"incoming", Kind::income, "Transfer", "Transfer"},
    {"transferred to your", Kind::income, "Transfer", "Transfer"},
    {"received from", Kind::income, "Transfer", "Transfer"},
    {"وارد", Kind::income, "Transfer", "Transfer"},
    {"الي حسابك", Kind::income, "Deposit", "Income"},
    {"لحسابك", Kind::income, "Deposit", "Income"},
};

// Of these the first in the message decides.
constexpr Movement movements[] = {
    {"withdraw~", Kind::expense, "ATM withdrawal", "Cash"},
    {"withdrew", Kind::expense, "ATM withdrawal", "Cash"},
    {"سحب", Kind::expense, "ATM withdrawal", "Cash"},
    {"transferred", Kind::expense, "Transfer", "Transfer"},
    {"transfer", Kind::expense, "Transfer", "Transfer"},
    {"sent", Kind::expense, "Transfer", "Transfer"},
    {"تحويل", Kind::expense, "Transfer", "Transfer"},
    {"حواله", Kind::expense, "Transfer", "Transfer"},
    {"purchase~", Kind::expense, "Card payment", ""},
    {"شراء", Kind::expense, "Card payment", ""},
    {"مشتريات", Kind::expense, "Card payment", ""},
    {"pos", Kind::expense, "Card payment", ""},
    {"used at", Kind::expense, "Card payment", ""},
    {"used for", Kind::expense, "Card payment", ""},
    {"spent", Kind::expense, "Card payment", ""},
    {"charged", Kind::expense, "Card payment", ""},
    {"debited", Kind::expense, "Payment", ""},
    {"debit alert", Kind::expense, "Payment", ""},
    {"debit transaction", Kind::expense, "Payment", ""},
    {"debit of", Kind::expense, "Payment", ""},
    {"standing order", Kind::expense, "Payment", ""},
    {"transaction", Kind::expense, "Card payment", ""},
    {"deducted", Kind::expense, "Payment", ""},
    {"paid", Kind::expense, "Payment", ""},
    {"payment", Kind::expense, "Payment", ""},
    {"خصم", Kind::expense, "Payment", ""},
    {"دفع", Kind::expense, "Payment", ""},
    {"سداد", Kind::expense, "Payment", ""},
    {"credited", Kind::income, "Deposit", "Income"},
    {"credit alert", Kind::income, "Deposit", "Income"},
    {"deposit~", Kind::income, "Deposit", "Income"},
    {"received", Kind::income, "Deposit", "Income"},
    {"ايداع", Kind::income, "Deposit", "Income"},
    {"اضاف~", Kind::income, "Deposit", "Income"},
    {"اضيف", Kind::income, "Deposit", "Income"},
    {"استلم~", Kind::income, "Deposit", "Income"},
};

const Movement* movementIn(std::string_view folded) {
  for (const Movement& movement : decidingMovements) {
    if (findWord(folded, movement.word) != nowhere) return &movement;
  }
  const Movement* first = nullptr;
  std::size_t firstAt = nowhere;
  for (const Movement& movement : movements) {
    const std::size_t at = findWord(folded, movement.word);
    if (at < firstAt) {
      first = &movement;
      firstAt = at;
    }
  }
  return first;
}

// A code is announced, rather than only warned about beside a payment.
bool announcesACode(std::string_view folded) {
  for (const std::string_view sentence : sentences(folded)) {
    if (!holdsAny(sentence, codeWords)) continue;
    const auto numbers = statedNumbers(sentence);
    const bool namesOne = std::any_of(
        numbers.begin(), numbers.end(),
        [](const StatedNumber& number) { return number.currency.empty() && !number.isPiece; });
    if (namesOne || !holdsAny(sentence, sharingWords)) return true;
  }
  return false;
}

std::size_t firstOf(std::string_view folded, std::span<const std::string_view> words) {
  std::size_t first = nowhere;
  for (const std::string_view word : words) first = std::min(first, findWord(folded, word));
  return first;
}

// The message without its sentences about offers and what is to come: "will be debited" is one,
// "was debited, enjoy your day" is none.
std::string withoutOffers(const MessageText& text) {
  std::string kept;
  const std::string_view readable = text.readable;
  std::size_t at = 0;
  for (const std::string_view sentence : sentences(text.folded)) {
    if (firstOf(sentence, doneWords) <= firstOf(sentence, offerWords)) {
      kept += readable.substr(at, sentence.size());
    }
    at += sentence.size();
  }
  return kept;
}

std::size_t lastOf(std::string_view folded, std::span<const std::string_view> words) {
  std::size_t last = nowhere;
  for (const std::string_view word : words) {
    for (std::size_t at = findWord(folded, word); at != nowhere;
         at = findWord(folded, word, at + 1)) {
      if (last == nowhere || at > last) last = at;
    }
  }
  return last;
}

// What is said between the sum before and this one tells what this one is: "Avail. Bal. EGP 900",
// but "your balance was credited with EGP 500".
bool isBalance(std::string_view told, std::string_view following) {
  const std::size_t balance = lastOf(told, balanceWords);
  if (balance != nowhere && movementIn(told.substr(balance)) == nullptr) return true;
  const std::size_t begin = std::min(following.find_first_not_of(' '), following.size());
  return following.substr(begin).starts_with("available") ||
         following.substr(begin).starts_with("is your");
}

// The sum that was moved: in the user's currency if there is one, no balance, a fee at last resort.
std::optional<StatedNumber> movedSum(std::string_view folded, std::string_view userCurrency) {
  const auto numbers = statedNumbers(folded);
  const bool currencies =
      std::any_of(numbers.begin(), numbers.end(),
                  [](const StatedNumber& number) { return !number.currency.empty(); });
  std::optional<StatedNumber> best;
  int bestRank = 0;
  std::size_t told = 0;
  for (const StatedNumber& number : numbers) {
    if (currencies ? number.currency.empty() : !number.hasCents || number.isPiece) continue;
    const std::string_view before = folded.substr(told, number.begin - told);
    told = number.end;
    if (!(number.value > 0) || isBalance(before, folded.substr(number.end))) continue;
    const int rank = holdsAny(before, feeWords) ? 1 : number.currency == userCurrency ? 3 : 2;
    if (rank > bestRank) best = number;
    bestRank = std::max(bestRank, rank);
  }
  return best;
}

// The sentence that the expense intent writes: "Paid 25.0 EGP at Cafe". Its number is a double's
// shortest text, in which a point never groups.
std::optional<Transaction> paymentSentence(std::string_view message) {
  constexpr std::string_view verb = "Paid ";
  constexpr std::string_view at = " at ";
  if (!message.starts_with(verb)) return std::nullopt;
  Transaction payment;
  const char* const end = message.data() + message.size();
  const auto [rest, error] = std::from_chars(message.data() + verb.size(), end, payment.amount);
  if (error != std::errc() || rest == end || *rest != ' ') return std::nullopt;
  const std::string_view tail(rest + 1, static_cast<std::size_t>(end - rest - 1));
  const std::size_t place = tail.find(at);
  if (place == nowhere || tail.substr(0, place).find(' ') != nowhere) return std::nullopt;
  if (!std::isfinite(payment.amount) || !(payment.amount > 0)) return std::nullopt;
  payment.currency = tail.substr(0, place);
  payment.description = shownPayee(tail.substr(place + at.size()));
  if (payment.description.empty()) payment.description = "Payment";
  return payment;
}

std::string categoryOf(const std::string& description, std::string_view otherwise) {
  const std::string_view byName = merchantCategory(MessageText(description).folded);
  if (!byName.empty()) return std::string(byName);
  return std::string(otherwise.empty() ? "Other" : otherwise);
}

}  // namespace

Recognition recognise(std::string_view message, std::string_view userCurrency) {
  message = message.substr(0, wholeCharacters(message, longestMessage));
  if (auto payment = paymentSentence(message)) {
    payment->category = categoryOf(payment->description, "");
    return *payment;
  }
  const MessageText whole(message);
  if (announcesACode(whole.folded)) return NotATransaction{};

  const MessageText text(withoutOffers(whole));
  const Movement* const movement = movementIn(text.folded);
  const auto sum = movedSum(text.folded, userCurrency);
  const bool refund = movement != nullptr && movement->description == "Refund";
  if (!refund && holdsAny(text.folded, declinedWords) &&
      (sum || holdsAny(text.folded, paymentWords))) {
    return Declined{};
  }
  if (movement == nullptr || !sum) return NotATransaction{};

  Transaction transaction;
  transaction.kind = movement->kind;
  transaction.amount = sum->value;
  transaction.currency = sum->currency.empty() ? userCurrency : sum->currency;
  const bool income = movement->kind == Kind::income;
  transaction.description = payeeIn(text, income ? Payee::whoPaid : Payee::whoIsPaid)
                                .value_or(std::string(movement->description));
  const bool fixed =
      income || movement->category.starts_with("__") || movement->category.starts_with("Credit");
  transaction.category = fixed ? std::string(movement->category)
                               : categoryOf(transaction.description, movement->category);
  return transaction;
}

}  // namespace kivo::MessageRecogniser
