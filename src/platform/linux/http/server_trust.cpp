#include "platform/linux/http/server_trust.h"

#include <cstdlib>
#include <mutex>
#include <optional>
#include <utility>

#include <boost/asio/ip/address.hpp>
#include <boost/asio/ssl/context.hpp>

#include "platform/foundation/errors.h"

namespace kivo::linux_platform {
namespace asio = boost::asio;

using platform::URLError;

namespace {

asio::ssl::context makeContext() {
  // TLS needs no cipher names, nothing prints OpenSSL's error strings, and the process exit frees
  // its memory. Skipping these saves a millisecond.
  OPENSSL_init_crypto(OPENSSL_INIT_NO_ADD_ALL_CIPHERS, nullptr);
  OPENSSL_init_ssl(OPENSSL_INIT_NO_LOAD_CRYPTO_STRINGS | OPENSSL_INIT_NO_LOAD_SSL_STRINGS |
                       OPENSSL_INIT_NO_ATEXIT,
                   nullptr);
  asio::ssl::context fresh(asio::ssl::context::tls_client);
  SSL_CTX_set_min_proto_version(fresh.native_handle(), TLS1_2_VERSION);
  // Not the file of all certificates: reading it takes ten times as long as the run.
  SSL_CTX_set_default_verify_dir(fresh.native_handle());
  // Unless SSL_CERT_FILE is set.
  if (std::getenv(X509_get_default_cert_file_env()) != nullptr) {
    SSL_CTX_set_default_verify_file(fresh.native_handle());
  }
  fresh.set_verify_mode(asio::ssl::verify_peer);
  return fresh;
}

// What SSL_set_tlsext_host_name stands for, without its cast.
bool setServerName(SSL* tls, const std::string& host) {
  std::string name = host;  // OpenSSL takes a pointer to bytes that it may change, and copies them
  return SSL_ctrl(tls, SSL_CTRL_SET_TLSEXT_HOSTNAME, TLSEXT_NAMETYPE_host_name, name.data()) == 1;
}

}  // namespace

struct ServerTrust::Made {
  std::once_flag once;
  std::optional<asio::ssl::context> context;
};

ServerTrust::ServerTrust() : made_(std::make_unique<Made>()) {}

ServerTrust::~ServerTrust() = default;

asio::ssl::context& ServerTrust::context() {
  try {
    std::call_once(made_->once, [this] { made_->context = makeContext(); });
  } catch (const boost::system::system_error&) {
    throw URLError(URLError::Code::secureConnectionFailed);
  }
  return *made_->context;
}

bool expectServer(SSL* tls, const std::string& host) {
  boost::system::error_code isName;
  asio::ip::make_address(host, isName);
  SSL_set_hostflags(tls,
                    X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS | X509_CHECK_FLAG_NEVER_CHECK_SUBJECT);
  if (isName) return setServerName(tls, host) && SSL_set1_host(tls, host.c_str()) == 1;
  return X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(tls), host.c_str()) == 1;
}

}  // namespace kivo::linux_platform
