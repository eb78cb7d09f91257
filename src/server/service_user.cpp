#include "server/service_user.h"

#include <cstdlib>
#include <fstream>
#include <string>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include "platform/linux/foundation/failure.h"

namespace kivo::server {

namespace {

// The settings of the unit that say where the books are, so that a command finds the same as the
// service.
void readUnitSettings() {
  std::ifstream file("/etc/default/kivo-server");
  for (std::string line; std::getline(file, line);) {
    for (const char* const name : {"KIVO_DATABASE", "PGPASSFILE"}) {
      const std::string beginning = std::string(name) + "=";
      if (!line.starts_with(beginning)) continue;
      constexpr int keepPresent = 0;
      setenv(name, line.substr(beginning.size()).c_str(), keepPresent);
    }
  }
}

}  // namespace

void becomeServiceUser() {
  constexpr const char* name = "kivo-server";
  if (geteuid() != 0 || std::getenv("XDG_DATA_HOME") != nullptr) return;
  const passwd* const user = getpwnam(name);
  if (user == nullptr) return;
  readUnitSettings();
  const bool became =
      initgroups(name, user->pw_gid) == 0 && setgid(user->pw_gid) == 0 && setuid(user->pw_uid) == 0;
  if (!became) throw linux_platform::Failure("cannot become the user kivo-server");
  setenv("HOME", user->pw_dir, 1);
  unsetenv("XDG_CONFIG_HOME");
  unsetenv("XDG_STATE_HOME");
  unsetenv("XDG_RUNTIME_DIR");
}

}  // namespace kivo::server
