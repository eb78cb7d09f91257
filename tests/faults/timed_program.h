// The real kivo-intents at a time and in a time zone that a test chooses.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "testkit/extension_program.h"

namespace kivo::testkit {

/// Seconds since 1970 of a time such as "2026-03-29T00:59:59Z"; throws for anything else.
std::int64_t secondsOf(const std::string& time);
/// The reverse.
std::string timeOf(std::int64_t seconds);

/// The text member of the body of a request.
std::string memberOf(const HttpRequest& request, std::string_view member);

class TimedProgram : public ExtensionProgram {
 protected:
  void SetUp() override { signIn(); }

  /// Performs ProcessSMSIntent on `text` with the clock stopped at `seconds`.
  [[nodiscard]] linux_platform::ProgramResult runAt(std::int64_t seconds, const std::string& text,
                                                    const std::string& zone = "UTC") const;
  /// The same without a backend: expects that `text` is saved offline.
  void queueAt(std::int64_t seconds, const std::string& text, const std::string& zone = "UTC");
  /// The same with a backend that has saved an expense: expects that it is tracked.
  void saveAt(std::int64_t seconds, const std::string& text, const std::string& zone = "UTC");

  [[nodiscard]] std::vector<std::string> queuedTexts() const;
  [[nodiscard]] std::string text(StoreKey key) const;
};

}  // namespace kivo::testkit
