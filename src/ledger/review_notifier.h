// Notifies the person of what they have to look at.
#pragma once

#include <memory>
#include <string>

#include "ledger/ledger_entry.h"

namespace kivo::ledger {

/// Reaches the session bus from the first notification on, and not before.
class ReviewNotifier {
 public:
  ReviewNotifier();
  /// Waits until what was posted is taken, 1 s at most.
  ~ReviewNotifier();
  ReviewNotifier(const ReviewNotifier&) = delete;
  ReviewNotifier& operator=(const ReviewNotifier&) = delete;

  /// Posts "Needs a look" for `entry` in the extension's name, if the person has authorized
  /// notifications. Returns at once; a failure leaves no trace.
  void post(const LedgerEntry& entry);

  /// Such as "20.00 USD at Netflix".
  static std::string body(const LedgerEntry& entry);

 private:
  struct Reached;
  std::unique_ptr<Reached> reached_;
};

}  // namespace kivo::ledger
