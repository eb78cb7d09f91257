#include "sms_watcher/intents_client.h"

#include <condition_variable>
#include <mutex>
#include <utility>

#include "platform/linux/bus/bus_call.h"
#include "platform/linux/bus/bus_thread.h"
#include "platform/linux/bus/intents_interface.h"

namespace kivo {

namespace intents_interface = linux_platform::intents_interface;
using linux_platform::BusMessage;
using linux_platform::BusThread;
using linux_platform::BusWriter;
using linux_platform::errorOf;
using linux_platform::methodCall;
using linux_platform::takeBusName;

namespace {

const std::optional<std::string> disconnected = DBUS_ERROR_DISCONNECTED;

}  // namespace

struct IntentsClient::State {
  std::chrono::milliseconds timeout;
  mutable std::mutex mutex;
  std::condition_variable changed;
  // All guarded by `mutex`.
  std::function<void()> onChange;
  bool underWay = false;
  bool lost = false;
  std::optional<Outcome> outcome;

  void end(std::optional<std::string> error) {
    const std::lock_guard lock(mutex);
    if (!std::exchange(underWay, false)) return;
    outcome = Outcome{std::move(error)};
    tell();
  }
  void lose() {
    end(disconnected);
    const std::lock_guard lock(mutex);
    lost = true;
    tell();
  }
  void tell() {
    changed.notify_all();
    if (onChange) onChange();
  }
};

IntentsClient::IntentsClient(const std::string& ownName, std::chrono::milliseconds timeout,
                             std::function<void()> onChange)
    : state_(std::make_shared<State>()) {
  state_->timeout = timeout;
  state_->onChange = std::move(onChange);
  bus_ = std::make_unique<BusThread>(
      BusThread::Settings{.onGone = [state = state_] { state->lose(); }});
  bus_->performAndWait([ownName](DBusConnection* bus) { takeBusName(bus, ownName); },
                       std::chrono::seconds(30));
}

IntentsClient::~IntentsClient() {
  {
    const std::lock_guard lock(state_->mutex);
    state_->onChange = nullptr;
  }
  bus_->finish(std::chrono::seconds(1));
}

void IntentsClient::perform(const std::string& intent, const std::string& parameter,
                            const std::string& text) {
  {
    const std::lock_guard lock(state_->mutex);
    state_->underWay = true;
  }
  const BusMessage call =
      methodCall(intents_interface::object, intents_interface::perform, [&](BusWriter& arguments) {
        arguments.text(intent);
        arguments.array("{sv}",
                        [&](BusWriter& parameters) { parameters.textEntry(parameter, text); });
      });
  bus_->call(call, state_->timeout, [state = state_](const BusMessage& reply) {
    state->end(reply ? errorOf(reply) : disconnected);
  });
}

bool IntentsClient::busy() const {
  const std::lock_guard lock(state_->mutex);
  return state_->underWay || state_->outcome;
}

std::optional<IntentsClient::Outcome> IntentsClient::takeOutcome(
    std::chrono::milliseconds timeout) {
  std::unique_lock lock(state_->mutex);
  state_->changed.wait_for(lock, timeout, [this] { return !state_->underWay; });
  return std::exchange(state_->outcome, std::nullopt);
}

bool IntentsClient::lost() const {
  const std::lock_guard lock(state_->mutex);
  return state_->lost;
}

}  // namespace kivo
