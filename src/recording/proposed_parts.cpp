#include "recording/proposed_parts.h"

#include <string>

#include "recognition/reading.h"

namespace kivo::recording {

using recognition::numberFor;

recognition::TaughtParts proposedParts(std::string_view message,
                                       const std::optional<book::LedgerEntry>& entry,
                                       const money::CurrencyCode& currency) {
  const recognition::Reading rules = recognition::read(message, currency);
  recognition::TaughtParts proposed;
  proposed.kind = entry ? entry->kind : rules.kind;
  if (!entry && rules.outcome == recognition::Outcome::declined) proposed.kind.reset();
  if (entry && entry->amount) proposed.amount = numberFor(message, *entry->amount);
  if (proposed.amount.empty() && rules.amount) proposed.amount = numberFor(message, *rules.amount);
  if (!rules.amount && !entry) proposed.amount = recognition::firstSum(message, currency);
  const std::string payee = entry ? entry->payee : rules.payee;
  if (recognition::namesPayee(message, payee)) proposed.payee = payee;
  return proposed;
}

}  // namespace kivo::recording
