// The TLS context: which servers are trusted over https. Included only by the .cpp file that
// connects.
#pragma once

#include <memory>
#include <string>

struct ssl_st;

namespace boost::asio::ssl {
class context;
}

namespace kivo::linux_platform {

/// TLS 1.2 or newer. Trusts the certificates of the system's hashed directory (SSL_CERT_DIR) and of
/// the file in SSL_CERT_FILE, if set.
class ServerTrust {
 public:
  ServerTrust();
  ~ServerTrust();
  ServerTrust(const ServerTrust&) = delete;
  ServerTrust& operator=(const ServerTrust&) = delete;

  /// Returns the TLS context, which lives as long as this object. The first call creates it: that
  /// takes 2 ms and reads OpenSSL's configuration. A certificate is read when a server first refers
  /// to it. Thread-safe. Throws URLError secureConnectionFailed.
  boost::asio::ssl::context& context();

 private:
  struct Made;
  std::unique_ptr<Made> made_;
};

/// Makes `tls` accept only a certificate for `host`, a name or an address, and send that name
/// (SNI). Accepts only names that the certificate contains literally, or with a wildcard for a
/// whole label. Returns false on failure.
bool expectServer(ssl_st* tls, const std::string& host);

}  // namespace kivo::linux_platform
