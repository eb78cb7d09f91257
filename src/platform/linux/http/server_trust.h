// Which servers are trusted over https. Connects to none; included by the .cpp file that does.
#pragma once

#include <memory>
#include <string>

struct ssl_st;

namespace boost::asio::ssl {
class context;
}

namespace kivo::linux_platform {

/// TLS 1.2 or newer, and the certificates of the system's hashed directory (SSL_CERT_DIR) and of a
/// file that SSL_CERT_FILE names.
class ServerTrust {
 public:
  ServerTrust();
  ~ServerTrust();
  ServerTrust(const ServerTrust&) = delete;
  ServerTrust& operator=(const ServerTrust&) = delete;

  /// Yields what secured connections are made with, which lives as long as this. Made by the first
  /// call, in 2 ms and by reading OpenSSL's configuration; every certificate is read when a server
  /// first refers to it. From any thread. Throws URLError secureConnectionFailed.
  boost::asio::ssl::context& context();

 private:
  struct Made;
  std::unique_ptr<Made> made_;
};

/// Has `tls` accept only a certificate for `host`, a name or an address, and ask for it by that
/// name. Of names only those that the certificate spells out count, with a star for a whole label
/// at most. False when that cannot be done.
bool expectServer(ssl_st* tls, const std::string& host);

}  // namespace kivo::linux_platform
