// Serves an object whose methods other programs call over the bus. Included by the .cpp files that
// speak on the bus, nowhere else.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/linux/bus/bus_message.h"
#include "platform/linux/bus/bus_object.h"
#include "platform/linux/bus/bus_refusal.h"

namespace kivo::linux_platform {

/// The reply to a call. Give it once, at any time, on the thread that serves the bus. The
/// connection must outlive it. Sends nothing when the caller wants no reply.
class BusAnswer {
 public:
  BusAnswer(DBusConnection* bus, DBusMessage* call);

  /// Answers with the values that `write` appends.
  void give(const BusWriter::Write& write = nullptr);
  void refuse(const BusRefusal& refusal);

 private:
  DBusConnection* bus_;
  BusMessage reply_;  // null when the caller wants none
};

struct BusArgument {
  const char* name;
  const char* type;
};

struct BusMethod {
  const char* name;
  std::vector<BusArgument> takes;
  std::vector<BusArgument> gives;
  /// Called for each call, with arguments of the types in `takes`. Gives `answer` at any time, or
  /// throws the BusRefusal to reply with.
  std::function<void(BusReader arguments, BusAnswer answer)> perform;
};

/// Serves `methods` of `object` on the thread that serves `bus`, until the connection is closed.
/// Answers Introspect with the description of `methods`, and other calls with D-Bus's standard
/// errors. Throws Failure when the bus cannot be used.
void serveObject(DBusConnection* bus, const BusObject& object, std::vector<BusMethod> methods);

}  // namespace kivo::linux_platform
