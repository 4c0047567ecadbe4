#pragma once

#include <openssl/ssl.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace korvel::test::tds {

/// A new key and a self-signed certificate for "localhost" and 127.0.0.1.
class TlsIdentity {
 public:
  TlsIdentity();
  [[nodiscard]] std::string certificatePem() const;
  [[nodiscard]] SSL_CTX* context() const { return context_.get(); }

 private:
  struct Free {
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(X509* certificate) const { X509_free(certificate); }
  };
  std::unique_ptr<EVP_PKEY, Free> key_;
  std::unique_ptr<X509, Free> certificate_;
  std::unique_ptr<SSL_CTX, Free> context_;
};

/// The server's side of one TLS connection on memory buffers; the caller reads and writes the socket. Throws
/// ProtocolError where the client violates the protocol.
class TlsServer {
 public:
  explicit TlsServer(const TlsIdentity& identity);

  /// Adds bytes received from the client.
  void feed(std::string_view bytes);
  /// One step of the handshake; true when it is complete.
  bool handshake();
  /// Takes the bytes to send to the client.
  std::string drain();

  void encrypt(std::string_view plain);
  /// Up to `limit` decrypted bytes; nothing where more input is needed first.
  std::optional<std::string> decrypt(std::size_t limit);

 private:
  struct Free {
    void operator()(SSL* ssl) const { SSL_free(ssl); }
  };
  std::unique_ptr<SSL, Free> ssl_;
  BIO* in_;
  BIO* out_;
};

}  // namespace korvel::test::tds
