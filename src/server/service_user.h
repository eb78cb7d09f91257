// The system's user who runs the server and owns its files.
#pragma once

namespace kivo::server {

/// Becomes the user kivo-server for good when root calls the program and that user exists: so that
/// `sudo kivo-server ...` works on the server's own books, and nothing runs as root. Takes
/// KIVO_DATABASE and PGPASSFILE from /etc/default/kivo-server, unless they are set. Does nothing
/// when XDG_DATA_HOME is set, which names other files. Throws Failure when the system refuses it.
void becomeServiceUser();

}  // namespace kivo::server
