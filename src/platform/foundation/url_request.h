// One HTTP request. URLSession sends it.
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
  /// Timeout of the whole exchange, name lookup included.
  std::chrono::milliseconds timeoutInterval = std::chrono::seconds(60);
  std::string httpMethod = "GET";
  /// The session adds the ones that HTTP requires.
  std::map<std::string, std::string> headerFields = {};
  /// Raw bytes.
  std::string httpBody = {};
};

}  // namespace kivo::platform
