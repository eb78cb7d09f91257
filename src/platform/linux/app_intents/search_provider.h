// The intents' shortcuts in the search of the desktop's shell. Performs none: it opens a terminal
// that does. Included by the .cpp files that speak on the bus, nowhere else.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/app_intents/app_intents_extension.h"
#include "platform/linux/process/terminal_window.h"

namespace sdbus {
class IConnection;
class IObject;
}  // namespace sdbus

namespace kivo::linux_platform {

/// Answers on `connection`, on the thread that serves it, from its making to its end.
class SearchProvider {
 public:
  /// Calls `onCall` at the beginning of each call. `extension` and `connection` outlive this.
  SearchProvider(sdbus::IConnection& connection, const platform::AppIntentsExtension& extension,
                 const std::function<void()>& onCall);
  ~SearchProvider();
  SearchProvider(const SearchProvider&) = delete;
  SearchProvider& operator=(const SearchProvider&) = delete;

  /// As `DetachedPrograms::reapEnded`, for the terminals that it has opened.
  bool reapEnded() { return windows_.reapEnded(); }

 private:
  void answerQuestions(const std::function<void()>& onCall);
  void followChoices(const std::function<void()>& onCall);
  void activate(const std::string& intent);
  void open(std::vector<std::string> arguments);

  const platform::AppIntentsExtension& extension_;
  TerminalWindows windows_;
  std::unique_ptr<sdbus::IObject> object_;
};

}  // namespace kivo::linux_platform
