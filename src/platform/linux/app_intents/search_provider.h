// The intents' shortcuts in the search of the desktop's shell. Performs none: it opens a terminal
// that does. Included by the .cpp files that speak on the bus, nowhere else.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/app_intents/app_intents_extension.h"
#include "platform/linux/bus/served_object.h"
#include "platform/linux/terminal/terminal_window.h"

namespace kivo::linux_platform {

/// Answers on `bus`, on the thread that serves it.
class SearchProvider {
 public:
  /// Calls `onCall` at the beginning of each call. `extension` outlives this, and `bus` is served
  /// no more when this ends. Throws std::runtime_error with one line when the bus cannot be used.
  SearchProvider(DBusConnection* bus, const platform::AppIntentsExtension& extension,
                 std::function<void()> onCall);
  SearchProvider(const SearchProvider&) = delete;
  SearchProvider& operator=(const SearchProvider&) = delete;

  /// As `DetachedPrograms::reapEnded`, for the terminals that it has opened.
  bool reapEnded() { return windows_.reapEnded(); }

 private:
  std::vector<BusMethod> methods();
  void answerInitial(BusReader& arguments, BusAnswer& answer);
  void answerSubsearch(BusReader& arguments, BusAnswer& answer);
  void answerMetas(BusReader& arguments, BusAnswer& answer);
  void answerActivate(BusReader& arguments, BusAnswer& answer);
  void answerLaunch(BusReader& arguments, BusAnswer& answer);
  void open(std::vector<std::string> arguments);

  const platform::AppIntentsExtension& extension_;
  std::function<void()> onCall_;
  TerminalWindows windows_;
};

}  // namespace kivo::linux_platform
