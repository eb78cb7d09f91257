#include "queue/pending_sms_item.h"

namespace kivo {

PendingSmsItem PendingSmsItem::decode(const platform::JSONObject& object) {
  return {
      .id = object.decodeString(CodingKeys::id),
      .smsText = object.decodeString(CodingKeys::smsText),
      .expenseDate = object.decodeString(CodingKeys::expenseDate),
      .queuedAt = object.decodeString(CodingKeys::queuedAt),
      .retryCount = object.decodeInteger(CodingKeys::retryCount),
      .source = object.decodeString(CodingKeys::source),
      .amount = object.decodeDoubleIfPresent(CodingKeys::amount),
      .merchant = object.decodeStringIfPresent(CodingKeys::merchant),
  };
}

platform::JSONEncoder PendingSmsItem::encode() const {
  platform::JSONEncoder object;
  object.encodeString(CodingKeys::id, id);
  object.encodeString(CodingKeys::smsText, smsText);
  object.encodeString(CodingKeys::expenseDate, expenseDate);
  object.encodeString(CodingKeys::queuedAt, queuedAt);
  object.encodeInteger(CodingKeys::retryCount, retryCount);
  object.encodeString(CodingKeys::source, source);
  object.encodeDoubleIfPresent(CodingKeys::amount, amount);
  object.encodeStringIfPresent(CodingKeys::merchant, merchant);
  return object;
}

}  // namespace kivo
