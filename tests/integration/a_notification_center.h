// The real notification center on a private bus, and the calls that a program can make.
#pragma once

#include <string>

#include <gmock/gmock.h>

#include "testkit/private_phone.h"

namespace kivo {

inline constexpr const char* notifyingBundle = "app.kivo.expenses.intents";
inline constexpr const char* linkedContent =
    "{'title': <'Kept'>, 'body': <'a < b & c > d'>, 'sound': <'default'>, "
    "'userInfo': <{'deepLink': 'kivo-expenses://'}>}";

class ANotificationCenter : public testing::Test {
 protected:
  linux_platform::ProgramResult add(const std::string& identifier,
                                    const std::string& content = linkedContent,
                                    const std::string& interval = "0.0",
                                    const std::string& repeats = "false") {
    return phone.callCenter("Add", {notifyingBundle, identifier, content, "--", interval, repeats});
  }
  std::string status(const std::string& ofBundle) {
    return phone.callCenter("AuthorizationStatus", {ofBundle}).output;
  }
  std::string pending() { return phone.callCenter("Pending", {notifyingBundle}).output; }

  testkit::PrivatePhone phone;
};

}  // namespace kivo
