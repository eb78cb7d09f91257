#include "recording/hand_entry.h"

#include <utility>

#include "platform/foundation/uuid.h"
#include "recognition/templates/message_template.h"
#include "recording/message_reading.h"

namespace kivo::recording {

book::LedgerEntry addByHand(book::Book& book, const HandEntry& payment) {
  book::LedgerEntry entry;
  entry.key = "by-hand-" + platform::UUID::uuidString();
  entry.userId = payment.userId;
  entry.date = payment.date;
  apply({recognition::readingAs(payment.kind, payment.amount, payment.payee, {})}, entry);
  entry.account = payment.account;
  entry = book.fitted(std::move(entry));
  entry.id = book.add(entry);
  return entry;
}

}  // namespace kivo::recording
