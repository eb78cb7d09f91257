#include "testkit/test_authority.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <stdexcept>

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

namespace kivo::testkit {
namespace {

template <auto release>
struct Releases {
  template <typename Object>
  void operator()(Object* object) const {
    release(object);
  }
};
using Key = std::unique_ptr<EVP_PKEY, Releases<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Releases<X509_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Releases<X509_EXTENSION_free>>;
using Memory = std::unique_ptr<BIO, Releases<BIO_free_all>>;

void need(bool done) {
  if (!done) throw std::runtime_error("OpenSSL made no test certificate");
}

void extend(X509* certificate, X509* issuer, int name, const std::string& value) {
  X509V3_CTX context{};
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  const Extension extension(X509V3_EXT_conf_nid(nullptr, &context, name, value.c_str()));
  need(extension != nullptr && X509_add_ext(certificate, extension.get(), -1) == 1);
}

void name(X509* certificate, const std::string& commonName) {
  const std::basic_string<unsigned char> bytes(commonName.begin(), commonName.end());
  need(X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_UTF8,
                                  bytes.c_str(), -1, -1, 0) == 1);
}

Key makeKey() {
  Key key(EVP_EC_gen("P-256"));
  need(key != nullptr);
  return key;
}

/// A certificate for `key` that still lacks issuer, extensions and signature.
Certificate draft(EVP_PKEY* key, const std::string& commonName, int validFrom, int validUntil) {
  static long serial = 1;
  constexpr long day = 24 * 60 * 60;
  Certificate certificate(X509_new());
  need(certificate != nullptr);
  X509_set_version(certificate.get(), X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), ++serial);
  X509_gmtime_adj(X509_getm_notBefore(certificate.get()), validFrom * day);
  X509_gmtime_adj(X509_getm_notAfter(certificate.get()), validUntil * day);
  X509_set_pubkey(certificate.get(), key);
  name(certificate.get(), commonName);
  return certificate;
}

std::string text(const Memory& memory) {
  std::string pem(BIO_ctrl_pending(memory.get()), '\0');
  std::size_t read = 0;
  need(BIO_read_ex(memory.get(), pem.data(), pem.size(), &read) == 1 && read == pem.size());
  return pem;
}

std::string pem(X509* certificate) {
  const Memory memory(BIO_new(BIO_s_mem()));
  need(PEM_write_bio_X509(memory.get(), certificate) == 1);
  return text(memory);
}

std::string pem(EVP_PKEY* key) {
  const Memory memory(BIO_new(BIO_s_mem()));
  need(PEM_write_bio_PrivateKey(memory.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1);
  return text(memory);
}

/// Certifies a fresh key, in the name of `issuer`, or of itself when that is null.
ServerIdentity certified(const ServerClaim& claim, X509* issuer, EVP_PKEY* issuerKey) {
  const Key key = makeKey();
  const Certificate certificate =
      draft(key.get(), ServerClaim::subject, claim.validFrom, claim.validUntil);
  X509* const by = issuer != nullptr ? issuer : certificate.get();
  need(X509_set_issuer_name(certificate.get(), X509_get_subject_name(by)) == 1);
  extend(certificate.get(), by, NID_subject_alt_name, claim.names);
  need(X509_sign(certificate.get(), issuerKey != nullptr ? issuerKey : key.get(), EVP_sha256()) >
       0);
  return {.certificate = pem(certificate.get()), .key = pem(key.get())};
}

}  // namespace

struct TestAuthority::Pair {
  Key key = makeKey();
  Certificate certificate = draft(key.get(), "Kivo test authority", -1, 1);
};

TestAuthority::TestAuthority() : own_(std::make_unique<Pair>()) {
  X509* const certificate = own_->certificate.get();
  need(X509_set_issuer_name(certificate, X509_get_subject_name(certificate)) == 1);
  extend(certificate, certificate, NID_basic_constraints, "critical,CA:TRUE");
  extend(certificate, certificate, NID_key_usage, "critical,keyCertSign,cRLSign");
  need(X509_sign(certificate, own_->key.get(), EVP_sha256()) > 0);
}

TestAuthority::~TestAuthority() = default;

ServerIdentity TestAuthority::certify(const ServerClaim& claim) const {
  return certified(claim, own_->certificate.get(), own_->key.get());
}

ServerIdentity TestAuthority::selfSigned(const ServerClaim& claim) {
  return certified(claim, nullptr, nullptr);
}

void TestAuthority::addTo(const std::filesystem::path& folder) const {
  std::array<char, 16> file{};
  std::snprintf(file.data(), file.size(), "%08lx.0",
                X509_subject_name_hash(own_->certificate.get()));
  std::filesystem::create_directories(folder);
  std::ofstream(folder / file.data()) << pem(own_->certificate.get());
}

}  // namespace kivo::testkit
