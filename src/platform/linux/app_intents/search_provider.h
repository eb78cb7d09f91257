// Offers the intents' shortcuts in the desktop's search, and opens a terminal that performs the
// chosen one. Included only by .cpp files that use D-Bus.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/app_intents/app_intents_extension.h"
#include "platform/linux/bus/served_object.h"
#include "platform/linux/terminal/terminal_window.h"

namespace kivo::linux_platform {

/// Serves the search provider interface on `bus`, on the thread that runs its event loop.
class SearchProvider {
 public:
  /// Calls `onCall` at the beginning of each call. `extension` must outlive this object, and the
  /// event loop of `bus` must have ended before this object is destroyed. Throws Failure when the
  /// bus cannot be used.
  SearchProvider(DBusConnection* bus, const platform::AppIntentsExtension& extension,
                 std::function<void()> onCall);
  SearchProvider(const SearchProvider&) = delete;
  SearchProvider& operator=(const SearchProvider&) = delete;

  /// As `DetachedPrograms::reapEnded`, for the terminals that it opened.
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
