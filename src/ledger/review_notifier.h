// Posts desktop notifications for entries in review and for budgets.
#pragma once

#include <memory>
#include <string>

#include "book/ledger_entry.h"
#include "ledger/budget_notice.h"

namespace kivo::ledger {

/// Connects to the session bus at the first notification. Not thread-safe.
class ReviewNotifier {
 public:
  ReviewNotifier();
  /// Waits until the posted notifications are sent, with a timeout of 1 s.
  ~ReviewNotifier();
  ReviewNotifier(const ReviewNotifier&) = delete;
  ReviewNotifier& operator=(const ReviewNotifier&) = delete;

  /// Posts "Needs a look" for `entry` as the extension's notification, if the user has authorized
  /// those; it opens the entry's page. Returns at once. Ignores failures.
  void post(const book::LedgerEntry& entry);
  /// Posts `notice` likewise; it opens the app.
  void post(const BudgetNotice& notice);

  /// Returns the notification's text, such as "20.00 USD at Netflix".
  static std::string body(const book::LedgerEntry& entry);

 private:
  struct Reached;
  void post(const std::string& title, const std::string& body, const std::string& link);

  std::unique_ptr<Reached> reached_;
};

}  // namespace kivo::ledger
