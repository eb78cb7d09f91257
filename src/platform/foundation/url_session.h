// HTTP requests and the process's session that sends them. Does not judge the status of a response.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

#include "platform/concurrency/task.h"
#include "platform/foundation/process_wide.h"
#include "platform/foundation/url.h"

namespace kivo::platform {

/// One HTTP request.
struct URLRequest {
  enum class CachePolicy { useProtocolCachePolicy };

  URL url;
  CachePolicy cachePolicy = CachePolicy::useProtocolCachePolicy;
  /// Timeout of the whole exchange, name lookup included.
  std::chrono::milliseconds timeoutInterval = std::chrono::seconds(60);
  std::string httpMethod = "GET";
  /// The session adds the ones that HTTP requires.
  std::map<std::string, std::string> headerFields = {};
  /// Raw bytes.
  std::string httpBody = {};
};

struct HTTPURLResponse {
  /// Of the final response, 200 to 999.
  int statusCode = 0;
};

/// A server's answer.
struct URLAnswer {
  /// The whole body, unchanged; empty without a response.
  std::string data;
  /// nullopt when the answer is not HTTP: its status line or a header is malformed.
  std::optional<HTTPURLResponse> response;
};

/// Thread-safe. Any number of exchanges may be in progress.
class URLSession {
 public:
  static URLSession& shared() { return ProcessWide<URLSession>::object(); }

  virtual ~URLSession() = default;

  /// Sends `request` and returns the answer, whatever its status, or that it is not HTTP. Does not
  /// follow redirects. Suspends during the exchange. Throws URLError when there is no complete
  /// answer, for example `timedOut` after the request's timeout, or `cancelled` when the task is
  /// cancelled before or during the exchange. Supports http, https and http+unix. Sends nothing
  /// before the server is verified: over https its certificate and name, over http+unix that its
  /// socket belongs to this user or to root.
  virtual Task<URLAnswer> data(URLRequest request) = 0;
};

}  // namespace kivo::platform
