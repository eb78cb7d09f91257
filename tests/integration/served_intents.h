// The intents service on a private session bus, which starts the real programs. The tests call it
// through standard clients.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/types.h>

#include "platform/linux/process/child_process.h"
#include "queue/pending_sms_item.h"
#include "store/shared_store.h"
#include "testkit/private_phone.h"

namespace kivo::testkit {

inline constexpr const char* intentsName = "app.kivo.expenses.Intents";

/// Instrumented programs are too slow and too large for limits on time and memory.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isInstrumented = true;
#else
inline constexpr bool isInstrumented = false;
#endif

class ServedIntents : public ::testing::Test {
 protected:
  ServedIntents() = default;
  /// With the services that the files in `services` describe.
  explicit ServedIntents(const std::filesystem::path& services) : phone(services) {}

  /// Performs by gdbus; `parameters` in GVariant's text form.
  linux_platform::ProgramResult perform(const std::string& intent, const std::string& parameters);
  /// Performs ProcessSMSIntent by gdbus on a text without quotes.
  linux_platform::ProgramResult processSMS(const std::string& text);
  /// The process that owns the bus name, which must be owned.
  pid_t service();
  /// The call of a script in the folder clients/.
  static linux_platform::ProgramCall client(const std::string& script,
                                            std::vector<std::string> arguments);
  /// The call of `kivo-intents serve` by hand.
  static linux_platform::ProgramCall serving();
  /// Waits until the bus name is owned, for at most 10 s; returns whether it is.
  bool isServed();

  static SharedStore store();
  static void signIn(const std::string& url);
  static std::vector<PendingSmsItem> queue();

  PrivatePhone phone;
};

/// The output of gdbus for a reply with `dialog`, which has no quotes.
std::string replyWith(const std::string& dialog);

/// The value of a line of /proc/<process>/status, such as "Threads"; its unit is left out.
long statusOf(pid_t process, const std::string& line);

}  // namespace kivo::testkit
