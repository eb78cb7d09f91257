// The HTTP session over sockets and TLS. Knows no endpoint.
#pragma once

#include <memory>

#include "platform/foundation/url_session.h"

namespace kivo::linux_platform {

/// One connection for each exchange, HTTP/1.1. TLS is set up at the first https request; trusted
/// are the certificates of the system's hashed directory (SSL_CERT_DIR), and of a file that
/// SSL_CERT_FILE names. No cookies, no proxy. A task that uses it runs on a TaskExecutor.
class HTTPURLSession : public platform::URLSession {
 public:
  HTTPURLSession();
  ~HTTPURLSession() override;

  platform::Task<platform::URLAnswer> data(platform::URLRequest request) override;

 private:
  struct Tls;
  std::unique_ptr<Tls> tls_;
};

}  // namespace kivo::linux_platform
