// A phone for a demonstration: the real programs with kivo-ledger as the backend, in private
// folders and on a private session bus. Touches nothing of the person's own, and leaves nothing
// behind.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "demo/notification_display.h"
#include "demo/private_session_bus.h"
#include "platform/linux/process/child_process.h"
#include "store/store_keys.h"

namespace kivo {

/// What the extension answered.
struct IntentAnswer {
  /// Its one line about an error, empty without one.
  std::string log;
  std::string dialog;
};

/// All operations block. They throw std::runtime_error with one line, which holds no path, when a
/// program that belongs to the phone is missing or fails.
class DemoPhone {
 public:
  /// Starts it, signed in at its own ledger with the currency `currency` and notifications allowed.
  explicit DemoPhone(const std::string& currency);
  /// Stops all of it and removes its folders.
  ~DemoPhone();
  DemoPhone(const DemoPhone&) = delete;
  DemoPhone& operator=(const DemoPhone&) = delete;

  /// Runs "Process Bank SMS" with `message`, byte for byte.
  IntentAnswer processSms(const std::string& message);
  /// Runs "Add Expense" with `amount`, in decimal digits, and `merchant`.
  IntentAnswer addExpense(const std::string& amount, const std::string& merchant);

  /// Waits until `count` more notifications have appeared than were told before, 5 s at most, and
  /// tells those that have. Calls `keepsWaiting` several times a second and gives up when it is
  /// false.
  std::vector<ShownNotification> nextNotifications(std::size_t count,
                                                   const std::function<bool()>& keepsWaiting);

  /// As `kivo-phone` shows them.
  std::string queue();
  std::string widget();
  /// The text that the shared store holds under `key`; empty when it holds none.
  std::string stored(StoreKey key);

  /// Starts the ledger and waits until it takes connections; it must not run.
  void startLedger();
  /// Stops the ledger, if it runs, with SIGTERM.
  void stopLedger();
  /// As `kivo-ledger` shows it; `command` is "list" or "review".
  std::string ledger(const std::string& command);
  /// The descriptions of the transactions that `command` shows, newest first.
  std::vector<std::string> descriptions(const std::string& command);

 private:
  using Environment = std::map<std::string, std::optional<std::string>>;

  // A folder that goes with its owner, and so after all that works in it.
  class Folder {
   public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

   private:
    std::filesystem::path path_;
  };

  [[nodiscard]] Environment environment() const;
  linux_platform::ProgramCall call(const char* program, std::vector<std::string> arguments,
                                   std::string input = {});
  linux_platform::ProgramResult run(const char* program, std::vector<std::string> arguments,
                                    std::string input = {});
  std::string phone(std::vector<std::string> arguments);
  IntentAnswer perform(std::vector<std::string> arguments, const std::string& input);

  Folder folder_;
  PrivateSessionBus bus_;
  NotificationDisplay display_;
  std::unique_ptr<linux_platform::ChildProcess> ledger_;  // absent while it is stopped
  std::size_t toldNotifications_ = 0;
};

}  // namespace kivo
