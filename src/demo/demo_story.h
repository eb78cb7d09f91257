// What the demonstration shows: the extension's main job, told step by step, and checked as it
// goes. Starts no program itself: that is DemoPhone.
#pragma once

#include <functional>
#include <string>

#include "demo/demo_screen.h"

namespace kivo {

/// How a demonstration ended.
enum class DemoEnd { asTold, otherwise, interrupted };

namespace DemoStory {

/// Tells the story on `screen`: somebody signed in, an expense, an income, a declined payment, a
/// code, a payment added by hand, a message and a payment kept while the ledger is stopped, and the
/// ledger's list. Takes some seconds. Asks `goesOn` several times a second and ends early when it
/// is false. Says on the screen what did not go as told. Throws what DemoPhone and DemoScreen
/// throw.
DemoEnd tell(DemoScreen& screen, const std::function<bool()>& goesOn);

/// Processes `message` (any bytes) and shows the same, and the ledger's review when the message is
/// there; the phone's currency is that of the message.
/// Otherwise as `tell`.
DemoEnd show(DemoScreen& screen, const std::string& message, const std::function<bool()>& goesOn);

}  // namespace DemoStory
}  // namespace kivo
