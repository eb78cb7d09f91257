#include "ledger/ledger_entry.h"

#include <algorithm>

#include "ledger/calendar_day.h"

namespace kivo::ledger {
namespace {

bool isCodeShaped(std::string_view currency) {
  return currency.size() == 3 &&
         std::all_of(currency.begin(), currency.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

}  // namespace

bool LedgerEntry::readsAs(const LedgerEntry& other) const {
  return state == other.state && kind == other.kind && amount == other.amount &&
         description == other.description && category == other.category && payee == other.payee &&
         account == other.account && reference == other.reference;
}

void apply(const Reading& reading, LedgerEntry& entry) {
  entry.kind = reading.kind;
  entry.amount = reading.amount && isBookable(*reading.amount) ? reading.amount : std::nullopt;
  entry.description = reading.description;
  entry.category = reading.category;
  entry.payee = reading.payee;
  entry.account = reading.account;
  entry.reference = reading.reference;
  const bool isClear = reading.outcome == Outcome::transaction && entry.amount;
  entry.state = isClear ? LedgerEntry::State::booked : LedgerEntry::State::review;
}

const char* kindText(Kind kind) {
  switch (kind) {
    case Kind::expense:
      return "expense";
    case Kind::income:
      return "income";
    case Kind::transfer:
      return "transfer";
  }
  return "";
}

std::optional<Kind> kindFromText(std::string_view text) {
  for (const Kind kind : {Kind::expense, Kind::income, Kind::transfer}) {
    if (text == kindText(kind)) return kind;
  }
  return std::nullopt;
}

const char* stateText(LedgerEntry::State state) {
  switch (state) {
    case LedgerEntry::State::booked:
      return "booked";
    case LedgerEntry::State::review:
      return "review";
    case LedgerEntry::State::setAside:
      return "set_aside";
  }
  return "";
}

std::optional<LedgerEntry::State> stateFromText(std::string_view text) {
  using State = LedgerEntry::State;
  for (const State state : {State::booked, State::review, State::setAside}) {
    if (text == stateText(state)) return state;
  }
  return std::nullopt;
}

std::string_view impossibleValue(const LedgerEntry& entry) {
  if (!isDay(entry.date)) return "date";
  if (!entry.amount) return entry.state == LedgerEntry::State::booked ? "amount" : "";
  if (!isBookable(*entry.amount)) return "amount";
  return isCodeShaped(entry.amount->currency) ? "" : "currency";
}

}  // namespace kivo::ledger
