#include "ledger/review_notifier.h"

#include "feedback/deep_link.h"
#include "feedback/expense_notifier.h"
#include "platform/linux/app_intents/installed_platform.h"
#include "platform/linux/concurrency/task_executor.h"
#include "platform/linux/foundation/failure.h"
#include "store/store_keys.h"

namespace kivo::ledger {

using book::LedgerEntry;
using money::Kind;

// The executor comes last: its destructor waits for the tasks, which use the platform.
struct ReviewNotifier::Reached {
  linux_platform::InstalledPlatform platform{extensionBundle};
  linux_platform::TaskExecutor executor{1};
};

ReviewNotifier::ReviewNotifier() = default;
ReviewNotifier::~ReviewNotifier() = default;

void ReviewNotifier::post(const LedgerEntry& entry) {
  post("🔎 Needs a look", body(entry), DeepLink::toPayment(entry.id));
}

void ReviewNotifier::post(const BudgetNotice& notice) {
  post(notice.title, notice.body, DeepLink::app);
}

void ReviewNotifier::post(const std::string& title, const std::string& body,
                          const std::string& link) {
  try {
    if (reached_ == nullptr) reached_ = std::make_unique<Reached>();
    reached_->executor.start(reached_->platform.asOneRun(ExpenseNotifier::post(title, body, link)));
  } catch (const linux_platform::Failure&) {  // no thread can be started
    reached_.reset();
  }
}

std::string ReviewNotifier::body(const LedgerEntry& entry) {
  if (!entry.amount) return "A message with an unclear sum: " + entry.description;
  const char* const preposition = entry.kind == Kind::income ? " from " : " at ";
  return sumText(*entry.amount) + preposition + entry.description;
}

}  // namespace kivo::ledger
