// One HTTP request, as a value. Sends nothing: that is URLSession.
#pragma once

#include <chrono>
#include <map>
#include <string>

#include "platform/foundation/url.h"

namespace kivo::platform {

struct URLRequest {
  enum class CachePolicy { useProtocolCachePolicy };

  URL url;
  CachePolicy cachePolicy = CachePolicy::useProtocolCachePolicy;
  /// How long the whole exchange may take, name lookup included.
  std::chrono::milliseconds timeoutInterval = std::chrono::seconds(60);
  std::string httpMethod = "GET";
  /// Set by the maker of the request; the session adds those that the protocol needs.
  std::map<std::string, std::string> headerFields = {};
  /// Bytes, sent as they are.
  std::string httpBody = {};
};

}  // namespace kivo::platform
