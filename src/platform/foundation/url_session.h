// The process's HTTP session. Judges no status and keeps nothing between exchanges.
#pragma once

#include <string>

#include "platform/concurrency/task.h"
#include "platform/foundation/process_wide.h"
#include "platform/foundation/url_request.h"

namespace kivo::platform {

struct HTTPURLResponse {
  /// Of the final answer, 200 to 999.
  int statusCode = 0;
};

/// A whole answer.
struct URLAnswer {
  /// The body's bytes, as sent.
  std::string data;
  HTTPURLResponse response;
};

/// Any number of exchanges may be under way at once, from any thread.
class URLSession {
 public:
  static URLSession& shared() { return ProcessWide<URLSession>::object(); }

  virtual ~URLSession() = default;

  /// Sends `request` and yields the whole answer, whatever its status; redirects are not followed.
  /// Suspends while the exchange runs. Throws URLError when it does not come to an answer: among
  /// others `timedOut` after the request's time, and `cancelled` when the task is cancelled before
  /// or during the exchange. Only http and https are spoken, the latter only with a server whose
  /// certificate and name are right: nothing of the request is sent before that.
  virtual Task<URLAnswer> data(URLRequest request) = 0;
};

}  // namespace kivo::platform
