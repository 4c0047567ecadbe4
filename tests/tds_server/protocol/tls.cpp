#include "tests/tds_server/protocol/tls.h"

#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <climits>
#include <stdexcept>

#include "tests/tds_server/protocol/bytes.h"

namespace korvel::test::tds {
namespace {

template <class Result>
Result require(Result result, const char* what) {
  if (!result) throw std::runtime_error(what);
  return result;
}

void addExtension(X509* certificate, int kind, const char* value) {
  X509_EXTENSION* extension = require(X509V3_EXT_conf_nid(nullptr, nullptr, kind, value), "certificate extension");
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

void fill(X509* certificate, EVP_PKEY* key) {
  X509_set_version(certificate, 2);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
  X509_gmtime_adj(X509_getm_notBefore(certificate), -3600);
  X509_gmtime_adj(X509_getm_notAfter(certificate), 24L * 3600);
  X509_set_pubkey(certificate, key);
  X509_NAME* name = X509_get_subject_name(certificate);
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("localhost"), -1, -1, 0);
  X509_set_issuer_name(certificate, name);
  addExtension(certificate, NID_basic_constraints, "critical,CA:TRUE");
  addExtension(certificate, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1");
  require(X509_sign(certificate, key, EVP_sha256()), "certificate signature");
}

}  // namespace

TlsIdentity::TlsIdentity()
    : key_(require(EVP_EC_gen("P-256"), "key")),
      certificate_(require(X509_new(), "certificate")),
      context_(require(SSL_CTX_new(TLS_server_method()), "TLS context")) {
  fill(certificate_.get(), key_.get());
  // TDS 7.4 carries the handshake in its own packets, which works up to TLS 1.2.
  SSL_CTX_set_max_proto_version(context_.get(), TLS1_2_VERSION);
  require(SSL_CTX_use_certificate(context_.get(), certificate_.get()) == 1, "certificate");
  require(SSL_CTX_use_PrivateKey(context_.get(), key_.get()) == 1, "key");
}

std::string TlsIdentity::certificatePem() const {
  BIO* memory = require(BIO_new(BIO_s_mem()), "memory");
  PEM_write_bio_X509(memory, certificate_.get());
  char* data = nullptr;
  const long size = BIO_get_mem_data(memory, &data);
  std::string pem(data, static_cast<std::size_t>(size));
  BIO_free(memory);
  return pem;
}

TlsServer::TlsServer(const TlsIdentity& identity)
    : ssl_(require(SSL_new(identity.context()), "TLS")), in_(BIO_new(BIO_s_mem())), out_(BIO_new(BIO_s_mem())) {
  SSL_set_bio(ssl_.get(), in_, out_);  // takes ownership of both
  SSL_set_accept_state(ssl_.get());
}

void TlsServer::feed(std::string_view bytes) {
  while (!bytes.empty()) {
    const int written = BIO_write(in_, bytes.data(), static_cast<int>(std::min<std::size_t>(bytes.size(), INT_MAX)));
    if (written <= 0) throw std::runtime_error("memory for TLS");
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

bool TlsServer::handshake() {
  ERR_clear_error();
  const int result = SSL_accept(ssl_.get());
  if (result == 1) return true;
  if (SSL_get_error(ssl_.get(), result) != SSL_ERROR_WANT_READ) throw ProtocolError("the TLS handshake failed");
  return false;
}

std::string TlsServer::drain() {
  std::string bytes(BIO_ctrl_pending(out_), '\0');
  if (!bytes.empty()) BIO_read(out_, bytes.data(), static_cast<int>(bytes.size()));
  return bytes;
}

void TlsServer::encrypt(std::string_view plain) {
  if (plain.empty()) return;
  ERR_clear_error();
  if (SSL_write(ssl_.get(), plain.data(), static_cast<int>(plain.size())) <= 0)
    throw ProtocolError("the TLS connection has failed");
}

std::optional<std::string> TlsServer::decrypt(std::size_t limit) {
  std::string plain(limit, '\0');
  ERR_clear_error();
  const int count = SSL_read(ssl_.get(), plain.data(), static_cast<int>(limit));
  if (count > 0) {
    plain.resize(static_cast<std::size_t>(count));
    return plain;
  }
  if (SSL_get_error(ssl_.get(), count) != SSL_ERROR_WANT_READ) throw ProtocolError("the TLS connection has failed");
  return std::nullopt;
}

}  // namespace korvel::test::tds
