#include "extraction/sms_extraction_response.h"

namespace kivo {

using platform::JSONDecoder;
using platform::JSONEncoder;
using platform::JSONObject;

// Braced initialisers are evaluated from left to right, so members are read in field order and the
// first that fails is the one that is reported.

SMSExtractionResponse::SavedExpense SMSExtractionResponse::SavedExpense::decode(
    const JSONObject& object) {
  return {
      .id = object.decodeString(CodingKeys::id),
      .description = object.decodeString(CodingKeys::description),
      .amount = object.decodeDouble(CodingKeys::amount),
      .category = object.decodeString(CodingKeys::category),
      .expense_date = object.decodeString(CodingKeys::expense_date),
  };
}

JSONEncoder SMSExtractionResponse::SavedExpense::encode() const {
  JSONEncoder object;
  object.encodeString(CodingKeys::id, id);
  object.encodeString(CodingKeys::description, description);
  object.encodeDouble(CodingKeys::amount, amount);
  object.encodeString(CodingKeys::category, category);
  object.encodeString(CodingKeys::expense_date, expense_date);
  return object;
}

SMSExtractionResponse SMSExtractionResponse::decode(std::string_view document) {
  const JSONObject object = JSONDecoder::object(document);
  SMSExtractionResponse response{
      .saved = object.decodeBool(CodingKeys::saved),
      .reason = object.decodeStringIfPresent(CodingKeys::reason),
      .transaction_type = object.decodeStringIfPresent(CodingKeys::transaction_type),
  };
  if (const auto nested = object.decodeObjectIfPresent(CodingKeys::expense)) {
    response.expense = SavedExpense::decode(*nested);
  }
  return response;
}

std::string SMSExtractionResponse::encode() const {
  JSONEncoder object;
  object.encodeBool(CodingKeys::saved, saved);
  object.encodeStringIfPresent(CodingKeys::reason, reason);
  object.encodeStringIfPresent(CodingKeys::transaction_type, transaction_type);
  if (expense) object.encodeObject(CodingKeys::expense, expense->encode());
  return object.text();
}

}  // namespace kivo
