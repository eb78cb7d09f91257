#include "sms_watcher/modem_messages.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/bus/bus_call.h"
#include "platform/linux/bus/bus_connection.h"
#include "platform/linux/bus/bus_loop.h"
#include "platform/linux/bus/bus_signal.h"
#include "platform/linux/foundation/failure.h"
#include "sms_watcher/modem_manager_interface.h"

namespace kivo {

using linux_platform::BusConnection;
using linux_platform::BusLoop;
using linux_platform::BusMessage;
using linux_platform::BusObject;
using linux_platform::BusReader;
using linux_platform::BusSignal;
using linux_platform::BusWriter;
using linux_platform::callAndWait;
using linux_platform::connectToSystemBus;
using linux_platform::errorOf;
using linux_platform::HeardSignal;
using linux_platform::messageBus;
using linux_platform::methodCall;
using linux_platform::OnSignal;
using linux_platform::subscribe;
using linux_platform::subscribeToOwner;

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds longestPause = std::chrono::minutes(5);

BusConnection connection() {
  BusConnection bus = connectToSystemBus();
  if (!bus) throw linux_platform::Failure("there is no system bus");
  return bus;
}

// Why a call to ModemManager gave no usable reply.
enum class ModemFailure {
  /// The object is gone, or has no such interface.
  notThere,
  /// There was no reply within the timeout, or another program replied.
  unanswered,
  refused,
};

ModemFailure failureBy(std::string_view error) {
  if (error == DBUS_ERROR_UNKNOWN_OBJECT || error == DBUS_ERROR_UNKNOWN_METHOD ||
      error == DBUS_ERROR_UNKNOWN_INTERFACE || error == DBUS_ERROR_INVALID_ARGS) {
    return ModemFailure::notThere;
  }
  const bool timedOut = error == DBUS_ERROR_NO_REPLY || error == DBUS_ERROR_TIMEOUT ||
                        error == DBUS_ERROR_TIMED_OUT || error == DBUS_ERROR_DISCONNECTED;
  return timedOut ? ModemFailure::unanswered : ModemFailure::refused;
}

std::optional<ModemMessage> receivedText(BusReader properties) {
  using namespace modem_manager_interface;
  ModemMessage message;
  bool received = false;
  bool delivered = false;
  bool numbered = false;
  for (; !properties.atEnd(); properties.skip()) {
    BusReader property = properties.inside();
    const std::string_view key = property.text().value_or("");
    BusReader value = property.inside();
    if (key == state) {
      received = value.natural() == stateReceived;
    } else if (key == pduType) {
      const std::uint32_t type = value.natural().value_or(0);
      delivered = type == pduDeliver || type == pduCdmaDeliver;
    } else if (key == text) {
      message.text = value.text().value_or("");
    } else if (key == number) {
      const auto sender = value.text();
      numbered = sender.has_value();
      message.number = sender.value_or("");
    } else if (key == timestamp) {
      message.timestamp = value.text().value_or("");
    }
  }
  // A message without text has, for example, binary data only.
  if (!received || !delivered || !numbered || message.text.empty()) return std::nullopt;
  return message;
}

// Whether `interfaces`, a{sa{sv}}, belong to a modem with messaging.
bool hasMessaging(BusReader interfaces) {
  for (; !interfaces.atEnd(); interfaces.skip()) {
    if (interfaces.inside().text() == modem_manager_interface::messaging) return true;
  }
  return false;
}

}  // namespace

struct ModemMessages::Bus {
  Bus(std::chrono::milliseconds callTimeout, std::chrono::milliseconds firstPause)
      : timeout(callTimeout), pause(firstPause) {}

  void listen();
  void findOwner();
  void setOwner(const std::string& name);
  BusMessage call(const std::string& path, const char* interface, const char* method,
                  const char* signature, const char* argument = nullptr);
  std::set<std::string> messagesOfAllModems(bool& whole);
  void readUnread(std::vector<ModemMessage>& messages, bool& whole);
  void lookAgainLater();

  const std::chrono::milliseconds timeout;
  const std::chrono::milliseconds pause;
  const BusConnection system = connection();
  BusLoop loop{system.get()};
  std::atomic<bool> stopping = false;

  // The unique name of the running ModemManager; empty while none runs. Only its signals count.
  // Calls go to this name, so that the bus does not start ModemManager.
  std::string owner;
  bool all = false;
  std::set<std::string> news;    // paths of messages that signals named
  std::set<std::string> unread;  // paths of messages to be read
  Clock::time_point notBefore{};
  std::chrono::milliseconds nextPause = pause;
};

void ModemMessages::Bus::listen() {
  using namespace modem_manager_interface;
  const auto hear = [this](const BusSignal& signal, const OnSignal& onSignal) {
    subscribe(system.get(), signal, [this, onSignal](const HeardSignal& heard) {
      if (heard.sender == owner) onSignal(heard);
    });
  };
  subscribeToOwner(system.get(), service, [this](const std::string& name) { setOwner(name); });
  // The signal's flag for messages from the network is also set for stored ones.
  hear({.interface = messaging, .member = added, .service = service}, [this](HeardSignal signal) {
    if (const auto path = signal.arguments.objectPath()) news.emplace(*path);
  });
  hear({.interface = properties, .member = propertiesChanged, .service = service, .argument = sms},
       [this](const HeardSignal& signal) { news.emplace(signal.path); });
  hear({.interface = objectManager, .member = interfacesAdded, .service = service},
       [this](HeardSignal signal) {
         if (!signal.arguments.objectPath()) return;
         all = all ||
               (signal.arguments.type() == "a{sa{sv}}" && hasMessaging(signal.arguments.inside()));
       });
}

void ModemMessages::Bus::findOwner() {
  const BusMessage question = methodCall(messageBus, "GetNameOwner", [](BusWriter& arguments) {
    arguments.text(modem_manager_interface::service);
  });
  const BusMessage reply = callAndWait(system.get(), question, timeout);
  if (!reply || errorOf(reply)) return;  // no program owns it
  if (std::string_view(dbus_message_get_sender(reply.get())) != messageBus.service) return;
  if (const auto name = BusReader(reply).text()) setOwner(std::string(*name));
}

void ModemMessages::Bus::setOwner(const std::string& name) {
  if (name == owner) return;
  owner = name;
  all = !name.empty();
  news.clear();
  unread.clear();
  notBefore = {};
  nextPause = pause;
}

// Returns a reply whose values have the types in `signature`; throws ModemFailure otherwise.
BusMessage ModemMessages::Bus::call(const std::string& path, const char* interface,
                                    const char* method, const char* signature,
                                    const char* argument) {
  const BusObject object{.service = owner.c_str(), .path = path.c_str(), .interface = interface};
  const BusMessage question = methodCall(object, method, [argument](BusWriter& arguments) {
    if (argument != nullptr) arguments.text(argument);
  });
  BusMessage reply = callAndWait(system.get(), question, timeout);
  if (!reply) throw ModemFailure::unanswered;
  if (const auto error = errorOf(reply)) throw failureBy(*error);
  if (!dbus_message_has_sender(reply.get(), owner.c_str())) throw ModemFailure::unanswered;
  if (!dbus_message_has_signature(reply.get(), signature)) throw ModemFailure::refused;
  return reply;
}

std::set<std::string> ModemMessages::Bus::messagesOfAllModems(bool& whole) {
  const BusMessage objects =
      call(modem_manager_interface::path, modem_manager_interface::objectManager,
           modem_manager_interface::getManagedObjects, "a{oa{sa{sv}}}");
  std::set<std::string> paths;
  BusReader modems = BusReader(objects).inside();
  for (; !modems.atEnd(); modems.skip()) {
    BusReader modem = modems.inside();
    const std::string path(*modem.objectPath());
    if (!hasMessaging(modem.inside())) continue;
    try {
      const BusMessage messages =
          call(path, modem_manager_interface::messaging, modem_manager_interface::list, "ao");
      BusReader found = BusReader(messages).inside();
      while (const auto message = found.objectPath()) paths.emplace(*message);
    } catch (ModemFailure failure) {
      if (failure == ModemFailure::unanswered) throw;
      // This modem is gone or not ready; others may be.
      whole = whole && failure == ModemFailure::notThere;
    }
  }
  return paths;
}

void ModemMessages::Bus::readUnread(std::vector<ModemMessage>& messages, bool& whole) {
  using namespace modem_manager_interface;
  for (const std::string& path : std::set<std::string>(unread)) {
    whole = whole && !stopping;
    if (stopping) return;
    try {
      const BusMessage values = call(path, properties, getAll, "a{sv}", sms);
      if (auto text = receivedText(BusReader(values).inside()))
        messages.push_back(std::move(*text));
      unread.erase(path);
    } catch (ModemFailure failure) {
      if (failure == ModemFailure::unanswered) throw;
      if (failure == ModemFailure::notThere) unread.erase(path);
      whole = whole && failure == ModemFailure::notThere;
    }
  }
}

void ModemMessages::Bus::lookAgainLater() {
  all = true;
  notBefore = Clock::now() + nextPause;
  nextPause = std::min(nextPause * 2, longestPause);
}

ModemMessages::ModemMessages(std::chrono::milliseconds timeout, std::chrono::milliseconds pause)
    : bus_(std::make_unique<Bus>(timeout, pause)) {
  bus_->listen();
  bus_->findOwner();
}

ModemMessages::~ModemMessages() = default;

bool ModemMessages::serve(
    const std::function<std::optional<std::chrono::milliseconds>()>& beforeWaiting) {
  return bus_->loop.run(beforeWaiting) == BusLoop::End::stopped;
}

std::optional<std::chrono::milliseconds> ModemMessages::untilReading() const {
  if (bus_->owner.empty() || (!bus_->all && bus_->news.empty())) return std::nullopt;
  if (!bus_->news.empty()) return std::chrono::milliseconds(0);
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(bus_->notBefore - Clock::now());
  return std::max(left, std::chrono::milliseconds(0));
}

ModemMessages::Reading ModemMessages::read() {
  Reading reading;
  bool whole = true;
  const bool all = bus_->all && Clock::now() >= bus_->notBefore;
  try {
    // New messages first: another program may delete a message as soon as it has read it.
    bus_->unread.merge(std::exchange(bus_->news, {}));
    bus_->readUnread(reading.messages, whole);
    if (all) {
      bus_->all = false;
      bus_->unread.merge(bus_->messagesOfAllModems(whole));
      bus_->readUnread(reading.messages, whole);
    }
  } catch (ModemFailure) {
    whole = false;
  }
  if (!whole) bus_->lookAgainLater();
  if (whole && all) bus_->nextPause = bus_->pause;
  reading.everything = all && whole;
  return reading;
}

void ModemMessages::lookAtAll() {
  bus_->all = true;
  bus_->notBefore = {};
}

void ModemMessages::wake() noexcept { bus_->loop.wake(); }

void ModemMessages::stop() noexcept {
  bus_->stopping = true;
  bus_->loop.stop();
}

}  // namespace kivo
