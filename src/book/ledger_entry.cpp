#include "book/ledger_entry.h"

#include <algorithm>

namespace kivo::book {

bool LedgerEntry::readsAs(const LedgerEntry& other) const {
  return state == other.state && kind == other.kind && refund == other.refund &&
         incoming == other.incoming && amount == other.amount && description == other.description &&
         category == other.category && payee == other.payee && account == other.account &&
         reference == other.reference;
}

void setKind(LedgerEntry& entry, money::Kind kind) {
  if (entry.kind == kind) return;
  entry.kind = kind;
  entry.refund = false;
  if (kind != money::Kind::transfer) entry.incoming = kind == money::Kind::income;
}

bool fitTogether(const LedgerEntry& one, const LedgerEntry& other) {
  const auto canBe = [](const LedgerEntry& entry) {
    return entry.state == LedgerEntry::State::booked && entry.amount && !entry.refund;
  };
  return canBe(one) && canBe(other) && one.amount == other.amount && one.incoming != other.incoming;
}

const char* kindWord(const LedgerEntry& entry) {
  return entry.refund ? "refund" : kindText(entry.kind);
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
  if (entry.impossibleDate) return "date";
  if (!entry.amount) return entry.state == LedgerEntry::State::booked ? "amount" : "";
  if (!isBookable(*entry.amount)) return "amount";
  return entry.impossibleCurrency ? "currency" : "";
}

}  // namespace kivo::book
