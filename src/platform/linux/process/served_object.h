// An object that other programs call over the bus, and the answers that they get. Performs nothing;
// included by the .cpp files that speak on the bus, nowhere else.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/linux/process/bus_message.h"
#include "platform/linux/process/bus_names.h"

namespace kivo::linux_platform {

/// The answer that the caller of a method waits for, if it does. To be given once, at any time, on
/// the thread that serves the bus, which outlives it.
class BusAnswer {
 public:
  BusAnswer(DBusConnection* bus, DBusMessage* call);

  /// Answers with what `write` appends.
  void give(const BusWriter::Write& write);
  /// Answers with the error of that name, which is a valid one.
  void refuse(const char* name, const std::string& words);

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
  /// Is handed the arguments of each call, which are of the types in `takes`. Must not throw.
  std::function<void(BusReader arguments, BusAnswer answer)> perform;
};

/// Calls of something else are answered with the usual errors, and calls for its description with
/// one.
class ServedObject {
 public:
  /// Serves calls on the thread that serves `bus`, which outlives this object. Throws
  /// std::runtime_error with one line when the bus cannot be used.
  ServedObject(DBusConnection* bus, const BusObject& object, std::vector<BusMethod> methods);
  ~ServedObject();
  ServedObject(const ServedObject&) = delete;
  ServedObject& operator=(const ServedObject&) = delete;

 private:
  static DBusHandlerResult handle(DBusConnection* bus, DBusMessage* call, void* object);
  [[nodiscard]] std::string description() const;

  DBusConnection* bus_;
  const BusObject& object_;
  const std::vector<BusMethod> methods_;
};

}  // namespace kivo::linux_platform
