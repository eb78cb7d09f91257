#include "recording/known_messages.h"

#include <algorithm>
#include <optional>

#include "extraction/sms_extraction_response.h"
#include "platform/foundation/errors.h"
#include "platform/foundation/number_text.h"
#include "recognition/reading.h"

namespace kivo::recording {
namespace {

using SavedExpense = SMSExtractionResponse::SavedExpense;

// As an ignored message is kept, and without the blanks that a phone may add or remove.
std::string comparable(std::string_view text) {
  text = recognition::partThatCounts(text);
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = std::min(text.find_first_not_of(blanks), text.size());
  return std::string(text.substr(first, text.find_last_not_of(blanks) + 1 - first));
}

// The expense of an answer; absent when it has none, and when a damaged file has another text.
std::optional<SavedExpense> expenseOf(const std::string& answer) {
  if (answer.empty()) return std::nullopt;
  try {
    return SMSExtractionResponse::decode(answer).expense;
  } catch (const platform::DecodingError&) {
    return std::nullopt;
  }
}

}  // namespace

KnownMessages::KnownMessages(const book::Book& book, const std::string& userId,
                             const std::string& importKeys) {
  for (const book::RecordedMessage& message : book.recordedMessages(userId, importKeys)) {
    add(message);
  }
}

// The day of the answer is that of the message; the user may have changed the transaction's.
void KnownMessages::add(const book::RecordedMessage& message) {
  const auto expense = expenseOf(message.answer);
  const auto answered = expense ? money::Day::fromText(expense->expense_date) : std::nullopt;
  const auto day = answered ? answered : message.date;
  if (!day) return;
  if (message.text) {
    ++byText_[comparable(*message.text)][*day].live;
  } else if (expense) {
    erased_[*day].push_back({expense->amount, expense->description});
  }
}

bool KnownMessages::hasText(std::string_view text) const {
  return !byText_.empty() && byText_.contains(comparable(text));
}

void KnownMessages::expect(std::string_view text, const money::Day& day) {
  const auto found = byText_.find(comparable(text));
  if (found != byText_.end()) ++found->second[day].expected;
}

bool KnownMessages::accountsFor(std::string_view text, const money::Day& day) {
  if (byText_.empty()) return false;
  const auto found = byText_.find(comparable(text));
  if (found == byText_.end()) return false;
  auto& days = found->second;
  OfDay& same = days[day];
  if (same.expected > 0) --same.expected;
  if (same.live > 0) {
    --same.live;
    return true;
  }
  for (auto& [other, ofDay] : days) {
    const bool isNear = other == day.before(1) || other.before(1) == day;
    if (!isNear || ofDay.live <= ofDay.expected) continue;
    --ofDay.live;
    return true;
  }
  return false;
}

bool KnownMessages::hasErasedOf(const money::Day& day) const { return erased_.contains(day); }

bool KnownMessages::accountsForErased(const book::LedgerEntry& entry) {
  const auto ofDay = erased_.find(entry.date);
  if (ofDay == erased_.end() || !entry.amount) return false;
  const auto amount = platform::doubleFromText(amountText(*entry.amount));
  const auto found =
      std::find_if(ofDay->second.begin(), ofDay->second.end(), [&](const Erased& erased) {
        return erased.amount == amount && erased.description == entry.description;
      });
  if (found == ofDay->second.end()) return false;
  ofDay->second.erase(found);
  return true;
}

}  // namespace kivo::recording
