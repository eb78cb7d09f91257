#include "ledger/ledger_entry.h"

namespace kivo::ledger {

void apply(const Reading& reading, LedgerEntry& entry) {
  entry.kind = reading.kind;
  entry.amount = reading.amount;
  entry.description = reading.description;
  entry.category = reading.category;
  entry.payee = reading.payee;
  entry.account = reading.account;
  entry.reference = reading.reference;
  entry.state = reading.outcome == Outcome::transaction ? LedgerEntry::State::booked
                                                        : LedgerEntry::State::review;
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
  return state == LedgerEntry::State::booked ? "booked" : "review";
}

}  // namespace kivo::ledger
