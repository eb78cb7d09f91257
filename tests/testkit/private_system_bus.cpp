#include "testkit/private_system_bus.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <unistd.h>

#include "testkit/private_phone.h"

namespace kivo::testkit {
namespace {

// As Debian's /usr/share/dbus-1/system.conf has them.
constexpr const char* defaultPolicy = R"(
  <policy context="default">
    <allow user="*"/>
    <deny own="*"/>
    <deny send_type="method_call"/>
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/>
    <allow receive_type="method_return"/>
    <allow receive_type="error"/>
    <allow receive_type="signal"/>
    <allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus"/>
    <allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus.Introspectable"/>
    <allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus.Properties"/>
  </policy>
)";

std::string mayOwn(const std::string& user, const std::string& name) {
  return "  <policy user=\"" + user + "\"><allow own=\"" + name + "\"/></policy>\n";
}

std::string mayCall(const std::string& who, const std::string& name) {
  return "  <policy " + who + "><allow send_destination=\"" + name + "\"/></policy>\n";
}

}  // namespace

PrivateSystemBus::PrivateSystemBus()
    : address_("unix:path=" + (folder_.path() / "system-bus").string()) {
  using enum std::filesystem::perms;
  std::filesystem::permissions(folder_.path(), owner_all | group_exec | others_exec);
  const std::string user = std::to_string(getuid());
  const std::string modemManager = "org.freedesktop.ModemManager1";
  const std::filesystem::path configuration = folder_.path() / "system-bus.conf";
  std::ofstream(configuration)
      << R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN")"
      << "\n \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n<busconfig>\n"
      << "  <type>system</type>\n  <listen>" << address_ << "</listen>\n  <auth>EXTERNAL</auth>"
      << defaultPolicy << mayOwn(user, modemManager)
      << mayCall("user=\"" + user + "\"", modemManager) << mayOwn("nobody", otherUsersName)
      << mayCall("context=\"default\"", otherUsersName) << "</busconfig>\n";
  daemon_ = std::make_unique<linux_platform::ChildProcess>(
      linux_platform::ProgramCall{.program = "dbus-daemon",
                                  .arguments = {"--config-file=" + configuration.string(),
                                                "--nofork", "--nopidfile", "--print-address=1"}});
  // It prints its address once it listens.
  if (!eventually([this] { return daemon_->outputSoFar().find('\n') != std::string::npos; })) {
    throw std::runtime_error("dbus-daemon does not start");
  }
}

PrivateSystemBus::~PrivateSystemBus() {
  daemon_->signal(SIGTERM);
  daemon_->wait(std::chrono::seconds(5));
}

}  // namespace kivo::testkit
