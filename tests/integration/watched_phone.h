// The real SMS watcher on private buses, between a scripted ModemManager and a scripted intents
// service.
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

/// The members of a received message, as JSON without its braces; `properties` are added or replace
/// others.
std::string message(const std::string& path, const std::string& text,
                    const std::string& number = "MyBank", const std::string& properties = "");

/// The time that lies `ago` back, as a modem writes it.
std::string timeAgo(std::chrono::seconds ago);

/// A property for `message`: the time of sending.
inline std::string sent(std::chrono::seconds ago) {
  return R"("Timestamp":")" + timeAgo(ago) + R"(")";
}

class WatchedPhone : public ::testing::Test {
 protected:
  /// A user is signed in, MyBank is named, and no service runs yet.
  WatchedPhone();
  /// With the services that the files in `services` describe.
  explicit WatchedPhone(const std::filesystem::path& services);
  ~WatchedPhone() override;

  /// Starts a ModemManager whose first modem holds `messages`, and waits until it owns its bus
  /// name.
  void startModemManager(const std::vector<std::string>& messages = {});
  /// Kills it, and waits until its bus name is free.
  void endModemManager();
  /// Sends the ModemManager `command`, the members of a JSON object; returns its answer.
  std::string modem(const std::string& command);
  void receive(const std::string& message) {
    modem(R"("do":"receive","message":{)" + message + "}");
  }
  std::string modemCalls() { return modem(R"("do":"calls")"); }

  /// Starts the intents service, and waits until it owns its bus name.
  void startIntents();
  /// The behaviour of the intents service from now on.
  void intentsDo(const std::string& behaviour);

  /// Starts the watcher with short timeouts, and waits until it is ready.
  void startWatcher(std::chrono::milliseconds performTimeout = std::chrono::seconds(30),
                    std::chrono::milliseconds modemTimeout = std::chrono::seconds(10));
  /// Ends the watcher by SIGTERM; returns its output.
  linux_platform::ProgramResult endWatcher();
  /// Kills the watcher.
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

  /// The texts that ProcessSMSIntent was called with, in order; an X is a call of another
  /// signature, or one that began before the last had ended.
  [[nodiscard]] std::vector<std::string> handedOn();
  /// Waits until there are `count` of them; returns all.
  std::vector<std::string> waitForHandedOn(std::size_t count);
  /// Whether the last of them has ended.
  bool lastIsAnswered();
  /// Makes the watcher hand on one more message, and waits for it: all earlier messages are
  /// processed then. Returns the texts that were handed on before.
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
