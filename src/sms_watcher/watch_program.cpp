#include "sms_watcher/watch_program.h"

#include <algorithm>
#include <atomic>
#include <iostream>
#include <optional>
#include <utility>

#include <unistd.h>

#include "platform/linux/foundation/failure.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/process/stop_signals.h"
#include "sms_watcher/intents_client.h"
#include "sms_watcher/modem_messages.h"
#include "sms_watcher/watch_settings.h"
#include "store/shared_store.h"

namespace kivo {
namespace {
using std::chrono::milliseconds;

// Escaped, since the text may include an error message from the bus.
void tell(const std::string& what) {
  std::cerr << "kivo-sms-watcher: " << linux_platform::escapedControls(what) << '\n';
}

// Without a user, the intent would answer with a dialog and drop the text.
bool isUserSignedIn() {
  const auto store = SharedStore::open(appGroup);
  return store && store->readNonEmptyText(StoreKeys::userId) &&
         store->readNonEmptyText(StoreKeys::supabaseUrl);
}

class WatchProgram {
 public:
  explicit WatchProgram(const WatchLimits& limits) : limits_(limits) {}

  int run();
  void stop() noexcept { modems_.stop(); }

 private:
  std::optional<milliseconds> turn();
  milliseconds handOnWhatIsDue();
  void applySettings();
  void readModems();
  void takeOutcome(milliseconds timeout);
  bool mayHandOn();

  WatchLimits limits_;
  ModemMessages modems_{limits_.modemCall, limits_.pauses.first};
  IntentsClient intents_{watcherBusName, limits_.perform, [this] { modems_.wake(); }};
  // Opened only after the bus name is taken, so that no other watcher uses it.
  SmsWatcher watcher_{WatcherRecord::open(), limits_.pauses};
  WatchSettings settings_;
  // Remembers what was printed, so that it is not repeated.
  bool saidThatNoUserIsSignedIn_ = false;
  bool saidThatSomeAreTooOld_ = false;
  std::optional<std::string> saidError_;
};

int WatchProgram::run() {
  const bool stopped = modems_.serve([this] { return turn(); });
  if (intents_.lost()) {
    tell("the session bus is gone");
    return 1;
  }
  takeOutcome(limits_.end);  // so that its message is not handed on again
  if (!stopped) tell("the system bus is gone");
  return stopped ? 0 : 1;
}

// Does the work that is due; returns the timeout of the next wait.
std::optional<milliseconds> WatchProgram::turn() {
  if (intents_.lost()) {
    modems_.stop();
    return std::nullopt;
  }
  applySettings();
  takeOutcome(milliseconds(0));
  if (settings_.senders().empty()) return limits_.look;

  if (modems_.untilReading() == milliseconds(0)) readModems();
  const milliseconds untilReading = modems_.untilReading().value_or(limits_.look);
  return std::min({limits_.look, untilReading, handOnWhatIsDue()});
}

void WatchProgram::readModems() {
  const ModemMessages::Reading reading = modems_.read();
  const auto extent =
      reading.everything ? SmsWatcher::Extent::everything : SmsWatcher::Extent::some;
  const auto tooOld = watcher_.take(reading.messages, extent, SmsWatcher::Clock::now());
  if (tooOld == 0 || std::exchange(saidThatSomeAreTooOld_, true)) return;
  tell("messages that were sent more than a day before their sender was named stay where they are");
}

// Hands on the next message if it is due; returns the time until the next one is.
milliseconds WatchProgram::handOnWhatIsDue() {
  const auto untilNext = watcher_.untilNext(SmsWatcher::Clock::now());
  if (!untilNext) return limits_.look;  // or until the call in progress has ended
  if (*untilNext > milliseconds(0)) return *untilNext;
  if (mayHandOn()) intents_.perform("ProcessSMSIntent", "smsText", watcher_.beginNext());
  return limits_.look;
}

void WatchProgram::applySettings() {
  if (!settings_.refresh() || settings_.broken()) return;
  watcher_.setSenders(settings_.senders(), settings_.changed());
  saidThatSomeAreTooOld_ = false;
  modems_.lookAtAll();  // also messages of newly named senders
}

void WatchProgram::takeOutcome(milliseconds timeout) {
  if (!intents_.busy()) return;
  const auto outcome = intents_.takeOutcome(timeout);
  if (!outcome) return;
  if (!outcome->error) {
    watcher_.answered();
  } else {
    watcher_.failed(SmsWatcher::Clock::now());
    if (saidError_ != outcome->error) {
      tell("a message could not be handed on and is tried again (" + *outcome->error + ")");
    }
  }
  saidError_ = outcome->error;
}

bool WatchProgram::mayHandOn() {
  const bool signedIn = isUserSignedIn();
  if (!signedIn && !saidThatNoUserIsSignedIn_)
    tell("not signed in, so messages wait; sign in with: kivo-phone sign-in");
  saidThatNoUserIsSignedIn_ = !signedIn;
  return signedIn;
}

}  // namespace

int runSmsWatcher(const WatchLimits& limits) {
  std::atomic<WatchProgram*> running = nullptr;
  const linux_platform::StopSignals signals([&running] {
    WatchProgram* const program = running;
    if (program == nullptr) _exit(0);  // it still connects
    program->stop();
  });
  try {
    WatchProgram program(limits);
    running = &program;
    return program.run();
  } catch (const linux_platform::Failure& failure) {
    tell(failure.what());
    return 1;
  }
}

}  // namespace kivo
