#include "platform/linux/process/served_object.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

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

// What the bus library answers by itself, and what we do.
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

}  // namespace

// The call itself is let go of: as long as it were held, it would count as unread, and beyond a
// limit the bus library reads no more.
BusAnswer::BusAnswer(DBusConnection* bus, DBusMessage* call)
    : bus_(bus),
      reply_(dbus_message_get_no_reply(call) ? nullptr : dbus_message_new_method_return(call)) {}

void BusAnswer::give(const BusWriter::Write& write) {
  if (!reply_) return;
  BusWriter writer(reply_.get());
  write(writer);
  dbus_connection_send(bus_, reply_.get(), nullptr);  // a caller that has gone gets none
}

void BusAnswer::refuse(const char* name, const std::string& words) {
  if (!reply_) return;
  const BusMessage error(dbus_message_new(DBUS_MESSAGE_TYPE_ERROR));
  if (!error || !dbus_message_set_error_name(error.get(), name) ||
      !dbus_message_set_destination(error.get(), dbus_message_get_destination(reply_.get())) ||
      !dbus_message_set_reply_serial(error.get(), dbus_message_get_reply_serial(reply_.get()))) {
    return;
  }
  dbus_message_set_no_reply(error.get(), 1);
  BusWriter(error.get()).text(words);
  dbus_connection_send(bus_, error.get(), nullptr);
}

ServedObject::ServedObject(DBusConnection* bus, const BusObject& object,
                           std::vector<BusMethod> methods)
    : bus_(bus), object_(object), methods_(std::move(methods)) {
  static constexpr DBusObjectPathVTable table{nullptr, handle, nullptr, nullptr, nullptr, nullptr};
  if (!dbus_connection_register_object_path(bus, object.path, &table, this)) {
    throw std::runtime_error("the session bus cannot be used");
  }
}

ServedObject::~ServedObject() { dbus_connection_unregister_object_path(bus_, object_.path); }

// As the bus library calls what is registered for a path. What is left to it, it answers as a
// method that there is not. A call need not name the interface that it means.
DBusHandlerResult ServedObject::handle(DBusConnection* bus, DBusMessage* call, void* object) {
  const auto& self = *static_cast<ServedObject*>(object);
  const auto means = [call](const char* interface, const char* method) {
    return dbus_message_is_method_call(call, interface, method) != 0;
  };
  if (means(DBUS_INTERFACE_INTROSPECTABLE, "Introspect")) {
    BusAnswer(bus, call).give([&self](BusWriter& reply) { reply.text(self.description()); });
    return DBUS_HANDLER_RESULT_HANDLED;
  }
  const auto method = std::find_if(
      self.methods_.begin(), self.methods_.end(),
      [&](const BusMethod& known) { return means(self.object_.interface, known.name); });
  if (method == self.methods_.end()) return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;

  const std::string signature = signatureOf(method->takes);
  BusAnswer answer(bus, call);
  if (dbus_message_has_signature(call, signature.c_str())) {
    method->perform(BusReader(call), std::move(answer));
  } else {
    answer.refuse(DBUS_ERROR_INVALID_ARGS,
                  "the arguments must have the signature '" + signature + "'");
  }
  return DBUS_HANDLER_RESULT_HANDLED;
}

std::string ServedObject::description() const {
  std::string text = std::string(DBUS_INTROSPECT_1_0_XML_DOCTYPE_DECL_NODE) + "<node>\n" +
                     standardInterfaces + " <interface name=\"" + object_.interface + "\">\n";
  for (const BusMethod& method : methods_) {
    text += std::string("  <method name=\"") + method.name + "\">\n" +
            described(method.takes, "in") + described(method.gives, "out") + "  </method>\n";
  }
  return text + " </interface>\n</node>\n";
}

}  // namespace kivo::linux_platform
