#include "postgresql/private_postgres.h"

#include <csignal>
#include <stdexcept>
#include <utility>
#include <vector>

#include <libpq-fe.h>
#include <unistd.h>

#include "testkit/private_phone.h"

namespace kivo::testkit {
namespace {

namespace fs = std::filesystem;
using linux_platform::ProgramCall;

// Installed, or unpacked by scripts/setup with the libraries that it needs.
fs::path programs() {
  constexpr const char* place = "usr/lib/postgresql/15/bin";
  const fs::path unpacked = fs::path(KIVO_UNPACKED_FOLDER) / place;
  return fs::exists(unpacked / "postgres") ? unpacked : fs::path("/") / place;
}

// PostgreSQL refuses to run as root: in a name space of its own, root is nobody.
ProgramCall call(const char* program, std::vector<std::string> arguments) {
  const std::string libraries =
      (fs::path(KIVO_UNPACKED_FOLDER) / "usr/lib/x86_64-linux-gnu").string();
  ProgramCall made{.program = programs() / program,
                   .arguments = std::move(arguments),
                   .environment = {{"LD_LIBRARY_PATH", libraries}, {"LC_ALL", "C"}}};
  if (geteuid() != 0) return made;
  std::vector<std::string> wrapped = {"--user", "--map-user=65534", "--map-group=65534",
                                      made.program.string()};
  wrapped.insert(wrapped.end(), made.arguments.begin(), made.arguments.end());
  made.program = "/usr/bin/unshare";
  made.arguments = std::move(wrapped);
  return made;
}

}  // namespace

PrivatePostgres::PrivatePostgres(Commits commits) : commits_(commits) {
  const auto made = linux_platform::runProgram(
      call("initdb", {"--pgdata", (folder_.path() / "data").string(), "--username=kivo",
                      "--auth=trust", "--encoding=UTF8", "--no-locale", "--no-sync"}));
  if (made.status != 0) throw std::runtime_error("initdb: " + made.errors);
  start();
}

PrivatePostgres::~PrivatePostgres() {
  server_->signal(SIGQUIT);  // ends at once
  server_->wait();
}

std::string PrivatePostgres::run(const char* program, std::vector<std::string> arguments) const {
  ProgramCall made = call(program, std::move(arguments));
  made.environment.emplace("PGHOST", folder_.path().string());
  made.environment.emplace("PGUSER", "kivo");
  made.environment.emplace("PGDATABASE", "postgres");
  const auto result = linux_platform::runProgram(made);
  if (result.status != 0) throw std::runtime_error(program + (": " + result.errors));
  return result.output;
}

std::string PrivatePostgres::url(const std::string& database) const {
  return "postgresql:///" + database + "?user=kivo&host=" + folder_.path().string();
}

void PrivatePostgres::start() {
  const std::string folder = folder_.path().string();
  server_ = std::make_unique<linux_platform::ChildProcess>(
      call("postgres", {"-D", folder + "/data", "-k", folder, "-c", "listen_addresses=", "-c",
                        commits_ == Commits::synced ? "fsync=on" : "fsync=off", "-c", "jit=off",
                        "-c", "shared_buffers=32MB"}));
  const bool answers =
      eventually([&] { return PQping(url().c_str()) == PQPING_OK; }, std::chrono::seconds(30));
  if (!answers) throw std::runtime_error("PostgreSQL does not answer");
}

void PrivatePostgres::killAndRestart() {
  server_->signal(SIGQUIT);
  server_->wait();
  start();
}

}  // namespace kivo::testkit
