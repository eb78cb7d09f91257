#include "platform/linux/bus/bus_call.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

namespace kivo::linux_platform {
namespace {

using PendingCall = std::unique_ptr<DBusPendingCall, decltype(&dbus_pending_call_unref)>;

// Calls `onReply` exactly once: the destructor calls it when nothing else did. libdbus forgets the
// calls of a lost connection without completing them.
class Answering {
 public:
  explicit Answering(OnReply onReply) : onReply_(std::move(onReply)) {}
  ~Answering() { give(nullptr); }
  Answering(const Answering&) = delete;
  Answering& operator=(const Answering&) = delete;

  void give(const BusMessage& reply) {
    if (const OnReply onReply = std::exchange(onReply_, nullptr)) onReply(reply);
  }

 private:
  OnReply onReply_;
};

// Callbacks of libdbus.
void giveReply(DBusPendingCall* pending, void* answering) {
  static_cast<Answering*>(answering)->give(ownedMessage(dbus_pending_call_steal_reply(pending)));
}
void endAnswering(void* answering) { delete static_cast<Answering*>(answering); }

// Returns null when the connection is lost.
PendingCall send(DBusConnection* bus, const BusMessage& call, std::chrono::milliseconds timeout) {
  const auto limit =
      static_cast<int>(std::min<std::int64_t>(timeout.count(), DBUS_TIMEOUT_INFINITE));
  DBusPendingCall* pending = nullptr;
  dbus_connection_send_with_reply(bus, call.get(), &pending, limit);
  return {pending, dbus_pending_call_unref};
}

}  // namespace

void sendCall(DBusConnection* bus, const BusMessage& call, std::chrono::milliseconds timeout,
              OnReply onReply) {
  auto answering = std::make_unique<Answering>(std::move(onReply));
  const PendingCall pending = send(bus, call, timeout);
  if (pending &&
      dbus_pending_call_set_notify(pending.get(), giveReply, answering.get(), endAnswering)) {
    static_cast<void>(answering.release());  // the pending call deletes it
  }
}

BusMessage callAndWait(DBusConnection* bus, const BusMessage& call,
                       std::chrono::milliseconds timeout) {
  const PendingCall pending = send(bus, call, timeout);
  if (!pending) return nullptr;
  dbus_pending_call_block(pending.get());
  return ownedMessage(dbus_pending_call_steal_reply(pending.get()));
}

std::optional<std::string> errorOf(const BusMessage& reply) {
  if (dbus_message_get_type(reply.get()) != DBUS_MESSAGE_TYPE_ERROR) return std::nullopt;
  return dbus_message_get_error_name(reply.get());
}

}  // namespace kivo::linux_platform
