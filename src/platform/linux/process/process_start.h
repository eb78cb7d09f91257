// The set-up that every program does first.
#pragma once

namespace kivo::linux_platform {

/// Makes the process independent of the state that it inherits. Opens file descriptors 0 to 2 on
/// /dev/null if they are closed, so that no output goes to a file opened later. Sets the umask to
/// 0077. Disables core dumps and access to its memory by other programs of the user, since the
/// memory holds messages. Ignores SIGPIPE and SIGXFSZ, so that a write to a closed pipe or past a
/// file size limit fails instead of ending the process, and stops ignoring SIGCHLD, which would
/// hide how programs ended. Call it before anything opens a file or starts a thread.
void startProcess();

}  // namespace kivo::linux_platform
