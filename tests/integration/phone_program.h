// Where the tests find kivo-phone.
#pragma once

#include <string>

#include "platform/linux/process/child_process.h"

namespace kivo {

/// The path of the kivo-phone of this build tree.
inline std::string phoneProgram() {
  return (linux_platform::programFolder() / "kivo-phone").string();
}

}  // namespace kivo
