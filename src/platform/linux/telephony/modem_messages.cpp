#include "platform/linux/telephony/modem_messages.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include <sdbus-c++/sdbus-c++.h>

#include "platform/linux/process/bus_loop.h"
#include "platform/linux/process/bus_names.h"
#include "platform/linux/process/sdbus_events.h"
#include "platform/linux/process/sdbus_signals.h"
#include "platform/linux/telephony/modem_wire.h"

namespace kivo::linux_platform {
namespace {

using Clock = std::chrono::steady_clock;
using Properties = std::map<std::string, sdbus::Variant>;
using Interfaces = std::map<std::string, Properties>;

constexpr std::chrono::milliseconds longestPause = std::chrono::minutes(5);

std::unique_ptr<sdbus::IConnection> connection() {
  try {
    return sdbus::createSystemBusConnection();
  } catch (const sdbus::Error&) {
    throw std::runtime_error("there is no system bus");
  }
}

// The object went away meanwhile, or never was what it seemed.
bool isNotThere(const sdbus::Error& error) {
  const std::string_view name = error.getName();
  return name == "org.freedesktop.DBus.Error.UnknownObject" ||
         name == "org.freedesktop.DBus.Error.UnknownMethod" ||
         name == "org.freedesktop.DBus.Error.UnknownInterface" ||
         name == "org.freedesktop.DBus.Error.InvalidArgs";
}

bool isUnanswered(const sdbus::Error& error) {
  const std::string_view name = error.getName();
  return name == "org.freedesktop.DBus.Error.NoReply" ||
         name == "org.freedesktop.DBus.Error.Timeout" ||
         name == "org.freedesktop.DBus.Error.TimedOut" || name == "System.Error.ETIMEDOUT";
}

template <typename Value>
std::optional<Value> valueOf(const Properties& properties, const char* key) {
  const auto found = properties.find(key);
  if (found == properties.end() || !found->second.containsValueOfType<Value>()) return std::nullopt;
  return found->second.get<Value>();
}

std::optional<ModemMessage> receivedText(const Properties& properties) {
  using namespace modem_wire;
  const std::uint32_t type = valueOf<std::uint32_t>(properties, pduType).value_or(0);
  if (valueOf<std::uint32_t>(properties, state) != stateReceived) return std::nullopt;
  if (type != pduDeliver && type != pduCdmaDeliver) return std::nullopt;
  auto content = valueOf<std::string>(properties, text);
  auto sender = valueOf<std::string>(properties, number);
  if (!content || content->empty() || !sender) return std::nullopt;  // say, binary data only
  return ModemMessage{.number = std::move(*sender),
                      .text = std::move(*content),
                      .timestamp = valueOf<std::string>(properties, timestamp).value_or("")};
}

}  // namespace

struct ModemMessages::Bus {
  Bus(std::chrono::milliseconds patienceOfCalls, std::chrono::milliseconds firstPause)
      : patience(patienceOfCalls), pause(firstPause) {}

  void listen();
  void findOwner();
  void setOwner(const std::string& name);
  void heardOfAdded(sdbus::Message& signal);
  void heardOfChange(sdbus::Message& signal);
  void heardOfInterfaces(sdbus::Message& signal);
  template <typename Answer>
  Answer call(const std::string& path, const char* interface, const char* method,
              const char* argument = nullptr);
  std::set<std::string> messagesOfAllModems(bool& whole);
  std::optional<ModemMessage> message(const std::string& path);
  void readUnread(std::vector<ModemMessage>& messages, bool& whole);
  void lookAgainLater();

  const std::chrono::milliseconds patience;
  const std::chrono::milliseconds pause;
  const std::unique_ptr<sdbus::IConnection> system = connection();
  BusLoop loop{eventsOf(*system)};
  std::atomic<bool> stopping = false;

  // The unique name of the ModemManager that is there, empty when none is. Signals count only from
  // it. It is called by this name, by which the bus starts none.
  std::string owner;
  bool all = false;
  std::set<std::string> news;    // paths of messages that were heard of
  std::set<std::string> unread;  // paths of messages to be read
  Clock::time_point notBefore{};
  std::chrono::milliseconds nextPause = pause;
};

void ModemMessages::Bus::listen() {
  using namespace modem_wire;
  const auto onModemManagers = [this](const BusSignal& signal, auto hear) {
    onSignal(*system, signal, [this, hear](sdbus::Message& message) {
      if (message.getSender() == owner) hear(message);
    });
  };
  onOwnerChange(*system, service, [this](const std::string& name) { setOwner(name); });
  onModemManagers({service, messaging, added}, [this](auto& signal) { heardOfAdded(signal); });
  onModemManagers({service, properties, propertiesChanged, sms},
                  [this](auto& signal) { heardOfChange(signal); });
  onModemManagers({service, objectManager, interfacesAdded},
                  [this](auto& signal) { heardOfInterfaces(signal); });
}

void ModemMessages::Bus::findOwner() {
  const auto proxy = sdbus::createProxy(*system, bus_names::bus.service, bus_names::bus.path);
  auto question = proxy->createMethodCall(bus_names::bus.interface, "GetNameOwner");
  question << modem_wire::service;
  try {
    std::string name;
    sdbus::MethodReply answer = proxy->callMethod(question, patience);
    if (answer.getSender() != bus_names::bus.service) return;
    answer >> name;
    setOwner(name);
  } catch (const sdbus::Error&) {
    // Nobody has it yet.
  }
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

void ModemMessages::Bus::heardOfAdded(sdbus::Message& signal) {
  sdbus::ObjectPath path;
  signal >> path;  // whether it comes from the network is said of stored ones too
  news.insert(path);
}

void ModemMessages::Bus::heardOfChange(sdbus::Message& signal) { news.insert(signal.getPath()); }

void ModemMessages::Bus::heardOfInterfaces(sdbus::Message& signal) {
  sdbus::ObjectPath path;
  Interfaces interfaces;
  signal >> path >> interfaces;
  all = all || interfaces.contains(modem_wire::messaging);
}

template <typename Answer>
Answer ModemMessages::Bus::call(const std::string& path, const char* interface, const char* method,
                                const char* argument) {
  const auto proxy = sdbus::createProxy(*system, owner, path);
  auto message = proxy->createMethodCall(interface, method);
  if (argument != nullptr) message << argument;
  sdbus::MethodReply reply = proxy->callMethod(message, patience);
  if (reply.getSender() != owner) throw sdbus::Error("org.freedesktop.DBus.Error.NoReply", "");
  Answer answer;
  reply >> answer;
  return answer;
}

std::set<std::string> ModemMessages::Bus::messagesOfAllModems(bool& whole) {
  const auto objects = call<std::map<sdbus::ObjectPath, Interfaces>>(
      modem_wire::path, modem_wire::objectManager, modem_wire::getManagedObjects);
  std::set<std::string> paths;
  for (const auto& [modem, interfaces] : objects) {
    if (!interfaces.contains(modem_wire::messaging)) continue;
    try {
      const auto messages =
          call<std::vector<sdbus::ObjectPath>>(modem, modem_wire::messaging, modem_wire::list);
      paths.insert(messages.begin(), messages.end());
    } catch (const sdbus::Error& error) {
      if (isUnanswered(error)) throw;
      // It went away, or it is not ready; the other modems are.
      whole = whole && isNotThere(error);
    }
  }
  return paths;
}

std::optional<ModemMessage> ModemMessages::Bus::message(const std::string& path) {
  const auto properties =
      call<Properties>(path, modem_wire::properties, modem_wire::getAll, modem_wire::sms);
  return receivedText(properties);
}

void ModemMessages::Bus::readUnread(std::vector<ModemMessage>& messages, bool& whole) {
  for (const std::string& path : std::set<std::string>(unread)) {
    whole = whole && !stopping;
    if (stopping) return;
    try {
      if (auto text = message(path)) messages.push_back(std::move(*text));
      unread.erase(path);
    } catch (const sdbus::Error& error) {
      if (isUnanswered(error)) throw;
      if (isNotThere(error)) unread.erase(path);
      whole = whole && isNotThere(error);
    }
  }
}

void ModemMessages::Bus::lookAgainLater() {
  all = true;
  notBefore = Clock::now() + nextPause;
  nextPause = std::min(nextPause * 2, longestPause);
}

ModemMessages::ModemMessages(std::chrono::milliseconds patience, std::chrono::milliseconds pause)
    : bus_(std::make_unique<Bus>(patience, pause)) {
  try {
    bus_->listen();
    bus_->findOwner();
  } catch (const sdbus::Error&) {
    throw std::runtime_error("the system bus cannot be listened to");
  }
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
    // First, since another program may delete a message as soon as it has read it.
    bus_->unread.merge(std::exchange(bus_->news, {}));
    bus_->readUnread(reading.messages, whole);
    if (all) {
      bus_->all = false;
      bus_->unread.merge(bus_->messagesOfAllModems(whole));
      bus_->readUnread(reading.messages, whole);
    }
  } catch (const sdbus::Error&) {
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

}  // namespace kivo::linux_platform
