#include "testkit/private_phone.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <utility>

#include <sys/stat.h>

#include "platform/linux/bus/notification_center_interface.h"

namespace kivo::testkit {

using linux_platform::ProgramResult;

namespace {

std::string pathWithStandIn(const std::filesystem::path& home) {
  const std::filesystem::path programs = home / "programs";
  std::filesystem::create_directories(programs);
  const std::filesystem::path opener = programs / "xdg-open";
  std::ofstream(opener) << "#!/bin/sh\nprintf '%s\\n' \"$*\" >> '" << (home / "opened").string()
                        << "'\n";
  std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
  const char* const path = std::getenv("PATH");
  return programs.string() + ":" + (path == nullptr ? "/usr/bin:/bin" : path);
}

bool isCenter(pid_t process) {
  std::string name;
  std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), name);
  return std::string("kivo-notification-center").starts_with(name) && !name.empty();
}

// Whether the process has ended, though its parent may not have waited for it
// yet: "1234 (name) Z ...".
bool isOver(pid_t process) {
  std::string line;
  std::getline(std::ifstream("/proc/" + std::to_string(process) + "/stat"), line);
  return line.empty() || line.find(") Z ") != std::string::npos;
}

}  // namespace

PrivatePhone::PrivatePhone()
    : PrivatePhone(linux_platform::programFolder().parent_path() / "dbus-services") {}

PrivatePhone::PrivatePhone(const std::filesystem::path& services)
    : path_("PATH", pathWithStandIn(folders_.home())) {
  bus_ = std::make_unique<PrivateSessionBus>(folders_.home(),
                                             std::vector<std::filesystem::path>{services});
  addressVariable_.emplace("DBUS_SESSION_BUS_ADDRESS", bus_->address());
}

PrivatePhone::~PrivatePhone() {
  // Also one that a test has stopped; it would outlive its bus.
  if (!center_ && bus_)
    center_ = processOf(linux_platform::notification_center_interface::object.service);
  if (!center_ || !isCenter(*center_)) return;
  kill(*center_, SIGTERM);  // it may still have to write down what it has reached of our code
  kill(*center_, SIGCONT);
  if (!eventually([this] { return isOver(*center_); }, std::chrono::seconds(2))) {
    kill(*center_, SIGKILL);
  }
}

ProgramResult PrivatePhone::call(const std::string& service, const std::string& path,
                                 const std::string& method, std::vector<std::string> arguments) {
  std::vector<std::string> all{"call",          "--session", "--dest",   service,
                               "--object-path", path,        "--method", method};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return linux_platform::runProgram({.program = "gdbus", .arguments = std::move(all)});
}

ProgramResult PrivatePhone::callCenter(const std::string& method,
                                       std::vector<std::string> arguments) {
  return call(
      linux_platform::notification_center_interface::object.service,
      linux_platform::notification_center_interface::object.path,
      std::string(linux_platform::notification_center_interface::object.interface) + "." + method,
      std::move(arguments));
}

std::optional<pid_t> PrivatePhone::processOf(const std::string& service) {
  const ProgramResult result = call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                    "org.freedesktop.DBus.GetConnectionUnixProcessID", {service});
  if (result.status != 0) return std::nullopt;
  const std::string answer = result.output;  // (uint32 1234,)
  return static_cast<pid_t>(std::stoi(answer.substr(answer.find(' '))));
}

pid_t PrivatePhone::startCenter() {
  const ProgramResult started = callCenter("Pending", {"any"});
  if (started.status != 0) throw std::runtime_error("no notification center: " + started.errors);
  center_ = processOf(linux_platform::notification_center_interface::object.service);
  return center_.value();
}

void PrivatePhone::killCenter() {
  const auto process = processOf(linux_platform::notification_center_interface::object.service);
  if (!process) return;
  kill(*process, SIGKILL);
  center_.reset();
  eventually(
      [&] { return !processOf(linux_platform::notification_center_interface::object.service); });
}

bool PrivatePhone::hasEnded(pid_t process) {
  return eventually([process] { return isOver(process); });
}

std::vector<std::string> PrivatePhone::openedLinks(std::size_t count) {
  std::vector<std::string> links;
  eventually(
      [&] {
        links.clear();
        std::ifstream in(folders_.home() / "opened");
        for (std::string line; std::getline(in, line);) links.push_back(line);
        return links.size() >= count;
      },
      std::chrono::seconds(5));
  return links;
}

}  // namespace kivo::testkit
