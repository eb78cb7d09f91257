// A bank SMS, processed on a test phone.
#pragma once

#include <string>
#include <utility>

#include "unit/intents/a_signed_in_phone.h"
#include "unit/intents/started_run.h"

namespace kivo {

class ABankSMS : public ASignedInPhone {
 protected:
  static std::string perform(std::string text = "Paid 150 at Carrefour") {
    return StartedRun(std::move(text)).dialog();
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
};

}  // namespace kivo
