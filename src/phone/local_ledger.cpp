#include "phone/local_ledger.h"

#include <chrono>
#include <system_error>

#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/http/http_endpoint.h"
#include "platform/linux/http/unix_socket.h"
#include "platform/linux/process/child_process.h"

namespace kivo {

std::optional<std::string> LocalLedger::url() {
  const auto socket = linux_platform::localBackendSocket();
  if (!socket) return std::nullopt;
  return linux_platform::urlOfSocket(socket->string());
}

bool LocalLedger::isSignedIn(const SharedStore& store) {
  const auto base = store.readNonEmptyText(StoreKeys::supabaseUrl);
  return base && base == url() && store.readNonEmptyText(StoreKeys::userId);
}

std::filesystem::path LocalLedger::program() {
  return linux_platform::programFolder() / "kivo-ledger";
}

bool LocalLedger::isToStart() {
  const auto socket = linux_platform::localBackendSocket();
  return socket && linux_platform::lacksServer(socket->string());
}

void LocalLedger::startSocket() {
  try {
    linux_platform::runProgram(
        {.program = "systemctl", .arguments = {"--user", "start", "kivo-ledger.socket"}},
        std::chrono::seconds(5));
  } catch (const std::system_error&) {
    // The check of the backend reports that the ledger does not answer.
  }
}

}  // namespace kivo
