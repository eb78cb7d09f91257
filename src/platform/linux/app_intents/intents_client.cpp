#include "platform/linux/app_intents/intents_client.h"

#include <condition_variable>
#include <future>
#include <mutex>
#include <stdexcept>
#include <utility>

#include <dbus/dbus.h>

#include "platform/linux/app_intents/intents_wire.h"
#include "platform/linux/process/bus_call.h"
#include "platform/linux/process/bus_thread.h"

namespace kivo::linux_platform {
namespace {

constexpr const char* nobody = DBUS_ERROR_DISCONNECTED;

// Takes `name` on the bus's thread; an error's words, or none.
std::optional<std::string> takeName(BusThread& bus, const std::string& name) {
  const auto taking = std::make_shared<std::promise<std::optional<std::string>>>();
  auto taken = taking->get_future();
  bus.post([taking, name](DBusConnection* connection) {
    if (connection == nullptr) return taking->set_value("there is no session bus");
    if (dbus_bus_request_name(connection, name.c_str(), DBUS_NAME_FLAG_DO_NOT_QUEUE, nullptr) !=
        DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER) {
      return taking->set_value("another program is " + name);
    }
    taking->set_value(std::nullopt);
  });
  constexpr std::chrono::seconds patience(30);
  if (taken.wait_for(patience) != std::future_status::ready) {
    return "the session bus does not answer";
  }
  return taken.get();
}

}  // namespace

struct IntentsClient::State {
  std::chrono::milliseconds patience;
  mutable std::mutex mutex;
  std::condition_variable changed;
  // All guarded by the mutex.
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
    end(nobody);
    const std::lock_guard lock(mutex);
    lost = true;
    tell();
  }
  void tell() {
    changed.notify_all();
    if (onChange) onChange();
  }
};

IntentsClient::IntentsClient(const std::string& ownName, std::chrono::milliseconds patience,
                             std::function<void()> onChange)
    : state_(std::make_shared<State>()) {
  state_->patience = patience;
  state_->onChange = std::move(onChange);
  bus_ = std::make_unique<BusThread>([state = state_] { state->lose(); });
  if (const auto error = takeName(*bus_, ownName)) throw std::runtime_error(*error);
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
  callOnBus(*bus_,
            {.object = bus_names::intents,
             .method = intents_wire::perform,
             .write =
                 [intent, parameter, text](BusWriter& arguments) {
                   arguments.text(intent);
                   arguments.array("{sv}", [&](BusWriter& parameters) {
                     parameters.textEntry(parameter, text);
                   });
                 },
             .patience = state_->patience},
            [state = state_](DBusMessage* reply) {
              state->end(reply == nullptr ? nobody : failureOf(reply));
            });
}

bool IntentsClient::busy() const {
  const std::lock_guard lock(state_->mutex);
  return state_->underWay || state_->outcome;
}

std::optional<IntentsClient::Outcome> IntentsClient::takeOutcome(std::chrono::milliseconds limit) {
  std::unique_lock lock(state_->mutex);
  state_->changed.wait_for(lock, limit, [this] { return !state_->underWay; });
  return std::exchange(state_->outcome, std::nullopt);
}

bool IntentsClient::lost() const {
  const std::lock_guard lock(state_->mutex);
  return state_->lost;
}

}  // namespace kivo::linux_platform
