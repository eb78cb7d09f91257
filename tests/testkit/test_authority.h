// A certificate authority for tests, and its certificates.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace kivo::testkit {

/// A server's certificate and its key, in PEM.
struct ServerIdentity {
  std::string certificate;
  std::string key;
};

/// The contents of a certificate.
struct ServerClaim {
  /// The name in the subject of every certificate, which must be ignored.
  static constexpr const char* subject = "subject.kivo.test";

  /// Names and addresses in the syntax of OpenSSL: "DNS:localhost,IP:127.0.0.1".
  std::string names = "DNS:localhost,IP:127.0.0.1,IP:::1";
  /// The validity in days from now.
  int validFrom = -1;
  int validUntil = 1;
};

class TestAuthority {
 public:
  TestAuthority();
  ~TestAuthority();
  TestAuthority(const TestAuthority&) = delete;
  TestAuthority& operator=(const TestAuthority&) = delete;

  /// An identity signed by this authority.
  [[nodiscard]] ServerIdentity certify(const ServerClaim& claim = {}) const;
  /// A self-signed identity.
  static ServerIdentity selfSigned(const ServerClaim& claim = {});

  /// Writes its certificate into `folder` under the name that OpenSSL looks up in a directory of
  /// trusted certificates (SSL_CERT_DIR).
  void addTo(const std::filesystem::path& folder) const;

 private:
  struct Pair;
  std::unique_ptr<Pair> own_;
};

}  // namespace kivo::testkit
