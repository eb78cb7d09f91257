// A certificate authority for tests, and what it certifies. Trusted by nobody who is not told to.
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

/// What to certify.
struct ServerClaim {
  /// The name in the subject of every certificate, which counts for nothing.
  static constexpr const char* subject = "subject.kivo.test";

  /// Names and addresses as OpenSSL spells them: "DNS:localhost,IP:127.0.0.1".
  std::string names = "DNS:localhost,IP:127.0.0.1,IP:::1";
  /// Days from now at which it begins and ends to be valid.
  int validFrom = -1;
  int validUntil = 1;
};

class TestAuthority {
 public:
  TestAuthority();
  ~TestAuthority();
  TestAuthority(const TestAuthority&) = delete;
  TestAuthority& operator=(const TestAuthority&) = delete;

  /// An identity certified by this authority.
  [[nodiscard]] ServerIdentity certify(const ServerClaim& claim = {}) const;
  /// An identity that nobody but itself has certified.
  static ServerIdentity selfSigned(const ServerClaim& claim = {});

  /// Puts its certificate into `folder` under the name by which a directory of trusted
  /// certificates (SSL_CERT_DIR) is searched.
  void addTo(const std::filesystem::path& folder) const;

 private:
  struct Pair;
  std::unique_ptr<Pair> own_;
};

}  // namespace kivo::testkit
