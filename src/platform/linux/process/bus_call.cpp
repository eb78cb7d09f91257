#include "platform/linux/process/bus_call.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

#include "platform/linux/process/bus_thread.h"

namespace kivo::linux_platform {
namespace {

// Sees to it that an answer is given exactly once, by the time nobody can give it any more.
class Answering {
 public:
  explicit Answering(ReadReply read) : read_(std::move(read)) {}
  ~Answering() { give(nullptr); }
  Answering(const Answering&) = delete;
  Answering& operator=(const Answering&) = delete;

  void give(DBusMessage* reply) {
    if (const ReadReply read = std::exchange(read_, nullptr)) read(reply);
  }

 private:
  ReadReply read_;
};

// As the bus library calls who waits for a reply, and who must know that it waits no more.
void giveReply(DBusPendingCall* waiting, void* answering) {
  const BusMessage reply(dbus_pending_call_steal_reply(waiting));
  static_cast<Answering*>(answering)->give(reply.get());
}
void endWaiting(void* answering) { delete static_cast<Answering*>(answering); }

int limitOf(const BusCall& call) {
  if (call.patience == call.patience.zero()) return DBUS_TIMEOUT_USE_DEFAULT;
  return static_cast<int>(std::min<std::int64_t>(call.patience.count(), DBUS_TIMEOUT_INFINITE));
}

void send(DBusConnection* bus, const BusCall& call, std::unique_ptr<Answering> answering) {
  const BusMessage message(dbus_message_new_method_call(call.object.service, call.object.path,
                                                        call.object.interface, call.method));
  if (!message) return;
  BusWriter arguments(message.get());
  call.write(arguments);
  DBusPendingCall* waiting = nullptr;  // stays null when the bus has gone
  if (!dbus_connection_send_with_reply(bus, message.get(), &waiting, limitOf(call)) ||
      waiting == nullptr) {
    return;
  }
  if (dbus_pending_call_set_notify(waiting, giveReply, answering.get(), endWaiting)) {
    static_cast<void>(answering.release());  // the connection's from now on
  }
  dbus_pending_call_unref(waiting);
}

}  // namespace

void callOnBus(BusThread& bus, BusCall call, ReadReply read) {
  auto answering =
      std::make_shared<std::unique_ptr<Answering>>(std::make_unique<Answering>(std::move(read)));
  bus.post([call = std::move(call), answering = std::move(answering)](DBusConnection* connection) {
    if (connection != nullptr) send(connection, call, std::move(*answering));
  });
}

std::optional<std::string> failureOf(DBusMessage* reply) {
  if (dbus_message_get_type(reply) != DBUS_MESSAGE_TYPE_ERROR) return std::nullopt;
  return dbus_message_get_error_name(reply);
}

}  // namespace kivo::linux_platform
