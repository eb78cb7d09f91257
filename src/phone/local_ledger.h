// The ledger on this machine as a backend. Its figures come from LedgerMonth.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "store/shared_store.h"

namespace kivo::LocalLedger {

/// Returns the base URL of kivo-ledger's socket; nullopt when XDG_RUNTIME_DIR has no place for it.
std::optional<std::string> url();

/// Returns whether the person is signed in, and the stored base URL is `url`.
bool isSignedIn(const SharedStore& store);

/// Returns the path of kivo-ledger, which is installed beside this program.
std::filesystem::path program();

/// Returns whether no server listens at the socket: it is missing or refuses connections.
bool isToStart();

/// Asks the user's service manager to listen on the socket, for a session that is older than the
/// installation. Blocks for at most 5 s. Does nothing without a service manager or without the
/// unit.
void startSocket();

}  // namespace kivo::LocalLedger
