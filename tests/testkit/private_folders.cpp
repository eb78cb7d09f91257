#include "testkit/private_folders.h"

#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace kivo::testkit {

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "kivo-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

ScopedVariable::ScopedVariable(std::string name, const std::optional<std::string>& value)
    : name_(std::move(name)) {
  if (const char* const before = std::getenv(name_.c_str())) before_ = before;
  if (value) {
    setenv(name_.c_str(), value->c_str(), 1);
  } else {
    unsetenv(name_.c_str());
  }
}

ScopedVariable::~ScopedVariable() {
  if (before_) {
    setenv(name_.c_str(), before_->c_str(), 1);
  } else {
    unsetenv(name_.c_str());
  }
}

PrivateFolders::PrivateFolders() {
  for (const auto& [name, value] : environment()) variables_.try_emplace(name, name, value);
}

PrivateFolders::~PrivateFolders() = default;

std::filesystem::path PrivateFolders::storeFile() const {
  return dataHome() / "group.app.kivo.expenses" / "defaults.sqlite3";
}

std::map<std::string, std::optional<std::string>> PrivateFolders::environment() const {
  const std::string nowhere = "unix:path=" + (home() / "no-bus").string();
  return {
      {"HOME", home().string()},
      {"XDG_DATA_HOME", dataHome().string()},
      {"XDG_CONFIG_HOME", (home() / "config").string()},
      {"XDG_CACHE_HOME", (home() / "cache").string()},
      {"XDG_STATE_HOME", (home() / "state").string()},
      {"XDG_RUNTIME_DIR", (home() / "run").string()},
      {"DBUS_SESSION_BUS_ADDRESS", nowhere},
      {"LC_ALL", "en_US.UTF-8"},
      {"TZ", "UTC"},
      {"SSL_CERT_DIR", std::nullopt},
      {"SSL_CERT_FILE", std::nullopt},
  };
}

}  // namespace kivo::testkit
