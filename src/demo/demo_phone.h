// Runs the real programs for the demonstration, with kivo-ledger as the backend, in temporary
// folders and on a private session bus. Does not touch the user's own files or bus.
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

/// The result of one intent.
struct IntentAnswer {
  /// The line that the extension logs about an error; empty without an error.
  std::string log;
  std::string dialog;
};

/// A signed-in phone. All operations block. They throw std::runtime_error with one line when a
/// program of the phone is missing or fails. Not thread-safe.
class DemoPhone {
 public:
  /// Starts the bus and the ledger, signs in to that ledger with the currency `currency`, and
  /// allows notifications.
  explicit DemoPhone(const std::string& currency);
  /// Stops the programs and the bus, and removes the folders.
  ~DemoPhone();
  DemoPhone(const DemoPhone&) = delete;
  DemoPhone& operator=(const DemoPhone&) = delete;

  /// Runs "Process Bank SMS" with `message`, byte for byte.
  IntentAnswer processSms(const std::string& message);
  /// Runs "Add Expense" with `amount`, in decimal digits, and `merchant`.
  IntentAnswer addExpense(const std::string& amount, const std::string& merchant);

  /// Waits for `count` notifications after those that earlier calls returned, with a timeout of
  /// 5 s, and returns all that have appeared since then. Calls `keepsWaiting` every 100 ms and
  /// stops waiting when it returns false.
  std::vector<ShownNotification> nextNotifications(std::size_t count,
                                                   const std::function<bool()>& keepsWaiting);

  /// Returns the output of `kivo-phone queue`, without its last line break.
  std::string queue();
  /// Returns the output of `kivo-phone widget`, without its last line break.
  std::string widget();
  /// Returns the value under `key` in the shared store, as `kivo-phone store get` prints it.
  std::string stored(StoreKey key);

  /// Starts the ledger, which must be stopped, and waits until it accepts connections, with a
  /// timeout of 10 s.
  void startLedger();
  /// Stops the ledger with SIGTERM, and with SIGKILL after 5 s. Has no effect when it is stopped.
  void stopLedger();
  /// Returns the output of `kivo-ledger` for `command`, which is "list" or "review", without its
  /// last line break.
  std::string ledger(const std::string& command);
  /// Returns the descriptions of the transactions that `command` lists, newest first.
  std::vector<std::string> descriptions(const std::string& command);

 private:
  using Environment = std::map<std::string, std::optional<std::string>>;

  // A temporary folder. Declared first, so that it is removed after the programs have stopped.
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
  std::unique_ptr<linux_platform::ChildProcess> ledger_;  // null while stopped
  std::size_t returnedNotifications_ = 0;
};

}  // namespace kivo
