// An object that other programs call over the bus, and the answers that they get. Included by the
// .cpp files that speak on the bus, nowhere else.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/linux/bus/bus_message.h"
#include "platform/linux/bus/bus_object.h"

namespace kivo::linux_platform {

/// An error with which a call is answered.
class BusRefusal : public std::runtime_error {
 public:
  /// `name` is a valid D-Bus error name, and constant.
  BusRefusal(const char* name, const std::string& words) : runtime_error(words), name_(name) {}
  [[nodiscard]] const char* name() const { return name_; }

 private:
  const char* name_;
};

/// The answer to a call, for a caller that waits for one. Given once, at any time, on the thread
/// that serves the bus, which outlives it.
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
  /// Is handed the arguments of each call, which have the types in `takes`. Answers at any time, or
  /// throws the BusRefusal to answer with.
  std::function<void(BusReader arguments, BusAnswer answer)> perform;
};

/// Answers calls of `methods` on the thread that serves `bus`, until that connection ends; other
/// calls of the object with the usual errors, and Introspect with the description of `methods`.
/// Throws std::runtime_error with one line when the bus cannot be used.
void serveObject(DBusConnection* bus, const BusObject& object, std::vector<BusMethod> methods);

}  // namespace kivo::linux_platform
