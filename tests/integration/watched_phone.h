// The real watcher of messages on private buses, between a ModemManager and a service of the
// intents that do as a test wants. Performs no intent itself.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/process/child_process.h"
#include "testkit/private_phone.h"
#include "testkit/private_system_bus.h"

namespace kivo::testkit {

inline constexpr const char* watcherName = "app.kivo.SmsWatcher";

/// The members of a message that a network delivered, as JSON without its braces; `properties` are
/// further ones, or others in place of them.
std::string message(const std::string& path, const std::string& text,
                    const std::string& number = "MyBank", const std::string& properties = "");

/// The time so long ago, as a modem writes it.
std::string timeAgo(std::chrono::seconds ago);

/// As JSON, after `message`.
inline std::string sent(std::chrono::seconds ago) {
  return R"("Timestamp":")" + timeAgo(ago) + R"(")";
}

class WatchedPhone : public ::testing::Test {
 protected:
  /// Somebody is signed in, MyBank is named, and no service is there yet.
  WatchedPhone();
  /// With the services that the files in `services` describe.
  explicit WatchedPhone(const std::filesystem::path& services);
  ~WatchedPhone() override;

  /// Starts a ModemManager whose first modem holds `messages`, and waits until it is there.
  void startModemManager(const std::vector<std::string>& messages = {});
  /// Kills it, and waits until its name is free.
  void endModemManager();
  /// Has the ModemManager do `command`, the members of a JSON object; its answer.
  std::string modem(const std::string& command);
  void receive(const std::string& message) {
    modem(R"("do":"receive","message":{)" + message + "}");
  }
  std::string modemCalls() { return modem(R"("do":"calls")"); }

  /// Starts the service of the intents, and waits until it is there.
  void startIntents();
  /// What it does with calls from now on.
  void intentsDo(const std::string& behaviour);

  /// Starts the watcher, with short patience, and waits until it is at work.
  void startWatcher(std::chrono::milliseconds performPatience = std::chrono::seconds(30),
                    std::chrono::milliseconds modemPatience = std::chrono::seconds(10));
  /// Ends the watcher by SIGTERM; what it has written.
  linux_platform::ProgramResult endWatcher();
  /// Ends the watcher where it stands.
  void killWatcher();

  /// Starts the Python program `script` of the clients' folder.
  static std::unique_ptr<linux_platform::ChildProcess> startClient(
      const std::string& script, std::vector<std::string> arguments);

  /// Runs `kivo-phone watch` with `arguments`.
  static linux_platform::ProgramResult watch(std::vector<std::string> arguments);
  /// Writes the settings file.
  static void writeSettings(const std::string& text);
  static std::filesystem::path settingsFile();
  static void signIn(const std::string& url);

  /// The texts that ProcessSMSIntent was asked to perform, in order; an X stands for a call of
  /// another shape, or one that began before the last had ended.
  [[nodiscard]] std::vector<std::string> handedOn();
  /// Waits until there are `count` of them; all that there are.
  std::vector<std::string> waitForHandedOn(std::size_t count);
  /// Whether the last of them has ended.
  bool lastIsAnswered();
  /// Has the watcher hand on one message more, and waits for it: what came before it is then
  /// decided. All that were handed on before.
  std::vector<std::string> handedOnBeforeOneMore();

  PrivatePhone phone;
  PrivateSystemBus systemBus;
  ScopedVariable systemAddress;
  std::unique_ptr<linux_platform::ChildProcess> modemManager;
  std::unique_ptr<linux_platform::ChildProcess> intents;
  std::unique_ptr<linux_platform::ChildProcess> watcher;

 private:
  std::filesystem::path notes() { return phone.folders().home() / "notes"; }
  std::filesystem::path behaviour() { return phone.folders().home() / "behaviour"; }
  bool hasModemManager();
  linux_platform::ProgramResult onSystemBus(const std::string& service, const std::string& path,
                                            const std::string& method, const std::string& argument);
};

}  // namespace kivo::testkit
