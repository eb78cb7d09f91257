// Says what a payment was for when the message names no payee: "SMS banking charges".
#pragma once

#include <string>
#include <string_view>

#include "recognition/analysed_message.h"
#include "recognition/movements.h"

namespace kivo::recognition {

/// The purpose of a payment; each part is empty where the message does not tell.
struct Purpose {
  /// The message's own words, on one line, 60 bytes of UTF-8 at most; or a common name for them.
  std::string description = {};
  /// A standard category.
  std::string_view category = {};
};

/// Whether `message` has a word for a salary outside of names.
bool speaksOfSalary(const AnalysedMessage& message);

/// The purpose of the payment in `message`, which `naming` describes: by the words behind
/// "towards", "for" or a label such as "Info:", in front of "of EGP 50.00", or in front of
/// "debited"; else by a word such as "installment". Empty when `naming` says more than that money
/// moved.
Purpose purposeOf(const AnalysedMessage& message, const Movement& naming);

}  // namespace kivo::recognition
