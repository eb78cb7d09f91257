// The steps of the demonstration and their checks. DemoPhone runs the programs.
#pragma once

#include <functional>
#include <string>

#include "demo/demo_screen.h"

namespace kivo {

/// The result of a demonstration.
enum class DemoEnd { asExpected, notAsExpected, interrupted };

namespace DemoStory {

/// Runs all steps and shows them on `screen`: the sign-in, an expense, an income, a declined
/// payment, a one-time code, a payment added by hand, a message and a payment while the ledger is
/// stopped, and the ledger's list. Takes some seconds. Calls `goesOn` before each step and while it
/// waits, and ends early when it returns false. Shows each check that fails. Throws the exceptions
/// of DemoPhone and DemoScreen.
DemoEnd tell(DemoScreen& screen, const std::function<bool()>& goesOn);

/// Processes `message` (any bytes) and shows the dialog, the notifications, the queue, the widget,
/// and the ledger's list or review when the message was recorded there. The phone's currency is
/// that of the message. Otherwise as `tell`.
DemoEnd show(DemoScreen& screen, const std::string& message, const std::function<bool()>& goesOn);

}  // namespace DemoStory
}  // namespace kivo
