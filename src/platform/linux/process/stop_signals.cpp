#include "platform/linux/process/stop_signals.h"

#include <atomic>
#include <csignal>
#include <utility>

namespace kivo::linux_platform {
namespace {

std::function<void()> stopping;
std::atomic<bool> isSet = false;  // whether `stopping` can be called
std::atomic<bool> hasCome = false;
static_assert(std::atomic<bool>::is_always_lock_free);

void handle(int) {
  hasCome = true;
  if (isSet) stopping();
}

}  // namespace

StopSignals::StopSignals(std::function<void()> stop) {
  stopping = std::move(stop);
  isSet = true;
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) std::signal(signal, handle);
}

StopSignals::~StopSignals() { isSet = false; }

bool StopSignals::came() { return hasCome; }

}  // namespace kivo::linux_platform
