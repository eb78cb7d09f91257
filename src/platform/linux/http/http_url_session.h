// The HTTP session over sockets and TLS.
#pragma once

#include <memory>

#include "platform/foundation/url_session.h"

namespace kivo::linux_platform {

class ServerTrust;

/// HTTP/1.1 with one connection for each exchange. TLS is set up at the first https request. No
/// cookies, no proxy. Tasks that use it run on a TaskExecutor that must be destroyed before it.
class HTTPURLSession : public platform::URLSession {
 public:
  HTTPURLSession();
  ~HTTPURLSession() override;

  platform::Task<platform::URLAnswer> data(platform::URLRequest request) override;

 private:
  std::unique_ptr<ServerTrust> trust_;
};

}  // namespace kivo::linux_platform
