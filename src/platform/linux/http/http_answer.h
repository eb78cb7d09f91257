// Reads the response to a request from a connection.
#pragma once

#include "platform/concurrency/task.h"
#include "platform/foundation/url_session.h"

namespace kivo::linux_platform {

/// Reads one response and skips the interim (1xx) ones before it. Returns an answer without a
/// response as soon as the status line or a header is malformed. Throws URLError when the
/// connection ends early, when a limit is exceeded (16 interim responses, 64 KiB of headers, 1 MiB
/// of body) and when a chunk is malformed. Suspends, without a timeout. `stream`, over TCP, TLS or
/// a UNIX socket, must outlive the task.
template <typename Stream>
platform::Task<platform::URLAnswer> readAnswer(Stream& stream);

}  // namespace kivo::linux_platform
