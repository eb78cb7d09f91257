// An added expense, of 25 at Cafe by default, on a test phone.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "intents/add_expense_intent.h"
#include "platform/foundation/errors.h"
#include "testkit/written_output.h"
#include "unit/intents/a_signed_in_phone.h"
#include "unit/intents/started_run.h"

namespace kivo {

/// A run of AddExpenseIntent with any amount, even one that no caller could pass.
inline StartedRun addExpense(double amount = 25, std::string merchant = "Cafe") {
  auto intent = std::make_unique<AddExpenseIntent>();
  intent->amount.assign(amount);
  intent->merchant.assign(std::move(merchant));
  return StartedRun(std::move(intent));
}

class AnAddedExpense : public ASignedInPhone {
 protected:
  static std::string perform(double amount = 25, std::string merchant = "Cafe") {
    return addExpense(amount, std::move(merchant)).dialog();
  }
  std::string performAnswered(std::string body) {
    phone_.session.willAnswer(std::move(body));
    return perform();
  }
  /// As above, and the retry of the queued text is not saved.
  std::string performSaved(std::string body) {
    willAnswerThenDrain(std::move(body));
    return perform();
  }
  struct Output {
    std::string dialog;
    testkit::WrittenOutput written;
  };
  static Output performCaptured(double amount = 25, const std::string& merchant = "Cafe") {
    Output output;
    output.written = testkit::writtenBy([&] { output.dialog = perform(amount, merchant); });
    return output;
  }
  /// The backend cannot be reached.
  Output performFailing(double amount = 25, const std::string& merchant = "Cafe") {
    phone_.session.willFail(platform::URLError(platform::URLError::Code::timedOut));
    return performCaptured(amount, merchant);
  }
  /// The text of the first request for an expense of `amount` at `merchant`.
  std::string textSent(double amount, std::string merchant = "Cafe") {
    phone_.session.willAnswer(testkit::notSavedBody);
    perform(amount, std::move(merchant));
    return phone_.session.sent("sms_text").back();
  }
};

}  // namespace kivo
