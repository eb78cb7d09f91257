#include "platform/linux/bus/served_object.h"

#include <memory>
#include <utility>

#include "platform/linux/foundation/failure.h"

namespace kivo::linux_platform {
namespace {

std::string signatureOf(const std::vector<BusArgument>& arguments) {
  std::string signature;
  for (const BusArgument& argument : arguments) signature += argument.type;
  return signature;
}

std::string described(const std::vector<BusArgument>& arguments, const std::string& direction) {
  std::string text;
  for (const auto& [name, type] : arguments) {
    text += std::string("   <arg type=\"") + type + "\" name=\"" + name + "\" direction=\"" +
            direction + "\"/>\n";
  }
  return text;
}

// libdbus answers calls of Peer itself, and `handle` those of Introspectable.
constexpr const char* standardInterfaces =
    " <interface name=\"org.freedesktop.DBus.Peer\">\n"
    "  <method name=\"Ping\"/>\n"
    "  <method name=\"GetMachineId\">\n"
    "   <arg type=\"s\" name=\"machine_uuid\" direction=\"out\"/>\n"
    "  </method>\n"
    " </interface>\n"
    " <interface name=\"org.freedesktop.DBus.Introspectable\">\n"
    "  <method name=\"Introspect\">\n"
    "   <arg name=\"xml_data\" type=\"s\" direction=\"out\"/>\n"
    "  </method>\n"
    " </interface>\n";

struct ServedObject {
  const BusObject& object;
  std::vector<BusMethod> methods;

  [[nodiscard]] std::string description() const;
};

std::string ServedObject::description() const {
  std::string text = std::string(DBUS_INTROSPECT_1_0_XML_DOCTYPE_DECL_NODE) + "<node>\n" +
                     standardInterfaces + " <interface name=\"" + object.interface + "\">\n";
  for (const BusMethod& method : methods) {
    text += std::string("  <method name=\"") + method.name + "\">\n" +
            described(method.takes, "in") + described(method.gives, "out") + "  </method>\n";
  }
  return text + " </interface>\n</node>\n";
}

void perform(const BusMethod& method, DBusMessage* call, BusAnswer answer) {
  try {
    const std::string signature = signatureOf(method.takes);
    if (!dbus_message_has_signature(call, signature.c_str())) {
      throw BusRefusal(DBUS_ERROR_INVALID_ARGS,
                       "the arguments must have the signature '" + signature + "'");
    }
    method.perform(BusReader(call), answer);
  } catch (const BusRefusal& refusal) {
    answer.refuse(refusal);
  }
}

// Callback of libdbus, which answers a call that is not handled with an error. A call need not name
// its interface.
DBusHandlerResult handle(DBusConnection* bus, DBusMessage* call, void* data) {
  const auto& served = *static_cast<ServedObject*>(data);
  const auto means = [call](const char* interface, const char* method) {
    return dbus_message_is_method_call(call, interface, method) != 0;
  };
  if (means(DBUS_INTERFACE_INTROSPECTABLE, "Introspect")) {
    BusAnswer(bus, call).give([&](BusWriter& reply) { reply.text(served.description()); });
    return DBUS_HANDLER_RESULT_HANDLED;
  }
  for (const BusMethod& method : served.methods) {
    if (!means(served.object.interface, method.name)) continue;
    perform(method, call, BusAnswer(bus, call));
    return DBUS_HANDLER_RESULT_HANDLED;
  }
  return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
}
void endServing(DBusConnection*, void* data) { delete static_cast<ServedObject*>(data); }

}  // namespace

// Keeps the reply and not the call: libdbus stops reading when the calls that are still referenced
// reach a limit.
BusAnswer::BusAnswer(DBusConnection* bus, DBusMessage* call) : bus_(bus) {
  if (!dbus_message_get_no_reply(call)) reply_ = ownedMessage(dbus_message_new_method_return(call));
}

void BusAnswer::give(const BusWriter::Write& write) {
  if (!reply_) return;
  if (write) {
    BusWriter values(reply_.get());
    write(values);
  }
  dbus_connection_send(bus_, reply_.get(), nullptr);  // a caller that has gone gets none
}

void BusAnswer::refuse(const BusRefusal& refusal) {
  if (!reply_) return;
  const BusMessage error = ownedMessage(dbus_message_new(DBUS_MESSAGE_TYPE_ERROR));
  dbus_message_set_error_name(error.get(), refusal.name());
  dbus_message_set_destination(error.get(), dbus_message_get_destination(reply_.get()));
  dbus_message_set_reply_serial(error.get(), dbus_message_get_reply_serial(reply_.get()));
  dbus_message_set_no_reply(error.get(), 1);
  BusWriter(error.get()).text(refusal.what());
  dbus_connection_send(bus_, error.get(), nullptr);
}

void serveObject(DBusConnection* bus, const BusObject& object, std::vector<BusMethod> methods) {
  static constexpr DBusObjectPathVTable table{endServing, handle,  nullptr,
                                              nullptr,    nullptr, nullptr};
  auto served = std::make_unique<ServedObject>(ServedObject{object, std::move(methods)});
  if (!dbus_connection_register_object_path(bus, object.path, &table, served.get())) {
    throw Failure("the session bus cannot be used");
  }
  static_cast<void>(served.release());  // the connection deletes it
}

}  // namespace kivo::linux_platform
