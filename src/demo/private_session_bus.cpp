#include "demo/private_session_bus.h"

#include <csignal>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

#include "platform/linux/bus/bus_connection.h"
#include "platform/linux/foundation/markup_text.h"

namespace kivo {

using linux_platform::ChildProcess;
using linux_platform::escapedMarkup;
using linux_platform::ProgramCall;

namespace {

// The limits of an ordinary session bus, high enough that no test reaches one by accident.
constexpr std::string_view policyAndLimits = R"(
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  <limit name="max_incoming_bytes">1000000000</limit>
  <limit name="max_outgoing_bytes">1000000000</limit>
  <limit name="max_message_size">1000000000</limit>
  <limit name="service_start_timeout">120000</limit>
  <limit name="auth_timeout">240000</limit>
  <limit name="pending_fd_timeout">150000</limit>
  <limit name="max_completed_connections">100000</limit>
  <limit name="max_incomplete_connections">10000</limit>
  <limit name="max_connections_per_user">100000</limit>
  <limit name="max_pending_service_starts">10000</limit>
  <limit name="max_names_per_connection">50000</limit>
  <limit name="max_match_rules_per_connection">50000</limit>
  <limit name="max_replies_per_connection">50000</limit>
)";

void writeConfiguration(const std::filesystem::path& file, const std::string& address,
                        const std::vector<std::filesystem::path>& serviceFolders) {
  std::ofstream out(file);
  out << R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN")"
      << "\n \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n<busconfig>\n"
      << "  <type>session</type>\n  <listen>" << escapedMarkup(address) << "</listen>\n";
  for (const auto& folder : serviceFolders) {
    out << "  <servicedir>" << escapedMarkup(folder.string()) << "</servicedir>\n";
  }
  out << policyAndLimits << "</busconfig>\n";
  if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
}

}  // namespace

PrivateSessionBus::PrivateSessionBus(const std::filesystem::path& folder,
                                     const std::vector<std::filesystem::path>& serviceFolders,
                                     std::map<std::string, std::optional<std::string>> environment)
    : address_(linux_platform::busAddressOf((folder / "session-bus").string())) {
  const std::filesystem::path configuration = folder / "session-bus.conf";
  writeConfiguration(configuration, address_, serviceFolders);
  environment["DBUS_SESSION_BUS_ADDRESS"] = address_;
  daemon_ = std::make_unique<ChildProcess>(
      ProgramCall{.program = "dbus-daemon",
                  .arguments = {"--config-file=" + configuration.string(), "--nofork",
                                "--nopidfile", "--print-address=1"},
                  .environment = std::move(environment)});

  // It prints its address once it listens.
  using namespace std::chrono_literals;
  for (auto waited = 0ms; daemon_->outputSoFar().find('\n') == std::string::npos; waited += 5ms) {
    if (waited > 10s) throw std::runtime_error("dbus-daemon does not start");
    std::this_thread::sleep_for(5ms);
  }
}

PrivateSessionBus::~PrivateSessionBus() {
  daemon_->signal(SIGTERM);
  daemon_->wait(std::chrono::seconds(5));
}

}  // namespace kivo
