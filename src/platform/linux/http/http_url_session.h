// The HTTP session over sockets and TLS. Knows no endpoint.
#pragma once

#include <memory>

#include "platform/foundation/url_session.h"

namespace kivo::linux_platform {

class ServerTrust;

/// One connection for each exchange, HTTP/1.1. TLS is set up at the first https request. No
/// cookies, no proxy. A task that uses it runs on a TaskExecutor that ends before it.
class HTTPURLSession : public platform::URLSession {
 public:
  HTTPURLSession();
  ~HTTPURLSession() override;

  platform::Task<platform::URLAnswer> data(platform::URLRequest request) override;

 private:
  std::unique_ptr<ServerTrust> trust_;
};

}  // namespace kivo::linux_platform
