// What every program does first. Reads no arguments.
#pragma once

namespace kivo::linux_platform {

/// Makes the process safe to work in whatever started it: descriptors 0 to 2 are open (on /dev/null
/// if need be, so that no output lands in a file opened later), files are made for their owner
/// only, its memory, in which messages lie, goes to no core dump and no other program of the user,
/// and a write to a reader that went away, or past a limit on files, fails instead of ending the
/// program. To be called before anything opens a file or starts a thread.
void startProcess();

}  // namespace kivo::linux_platform
