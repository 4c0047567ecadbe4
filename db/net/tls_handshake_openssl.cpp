#include "db/net/tls_handshake.h"

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

#include "base/error.h"
#include "db/net/pre_login.h"

namespace korvel::db::net {

namespace {

constexpr std::int32_t securityFailure = -2146893052;  // 0x80090304, as users know failures of the security layer

struct Free {
  void operator()(SSL_CTX* context) const noexcept { SSL_CTX_free(context); }
  void operator()(SSL* connection) const noexcept { SSL_free(connection); }
};
using Context = std::unique_ptr<SSL_CTX, Free>;
using Connection = std::unique_ptr<SSL, Free>;

[[noreturn]] void refuse() {
  std::array<char, 256> text{};
  const unsigned long code = ERR_get_error();
  const char* const reason = code == 0 ? nullptr : ERR_reason_error_string(code);
  if (reason == nullptr && code != 0) ERR_error_string_n(code, text.data(), text.size());
  throw Error(securityFailure, reason != nullptr ? reason : code != 0 ? text.data() : "the handshake failed");
}

Context makeContext(const std::string& authorities) {
  Context context(SSL_CTX_new(TLS_client_method()));
  if (!context) refuse();
  // Old servers show keys that no modern program would make; whether they are trusted is decided by who signed them.
  SSL_CTX_set_security_level(context.get(), 0);
  SSL_CTX_set_verify(context.get(), SSL_VERIFY_NONE, nullptr);  // the handshake goes on, the result is asked for below
  const int loaded = authorities.empty() ? SSL_CTX_set_default_verify_paths(context.get())
                                         : SSL_CTX_load_verify_file(context.get(), authorities.c_str());
  if (loaded != 1) ERR_clear_error();
  if (loaded != 1 && !authorities.empty()) refuseAuthorities(authorities);
  return context;
}

Connection makeConnection(const Context& context, const std::string& host) {
  Connection connection(SSL_new(context.get()));
  if (!connection) refuse();
  X509_VERIFY_PARAM* const wanted = SSL_get0_param(connection.get());
  X509_VERIFY_PARAM_set_hostflags(wanted, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
  if (X509_VERIFY_PARAM_set1_ip_asc(wanted, host.c_str()) != 1) {
    ERR_clear_error();
    if (X509_VERIFY_PARAM_set1_host(wanted, host.c_str(), host.size()) != 1) refuse();
    SSL_set_tlsext_host_name(connection.get(), host.c_str());
  }
  SSL_set_bio(connection.get(), BIO_new(BIO_s_mem()), BIO_new(BIO_s_mem()));  // owned by the connection from now on
  SSL_set_connect_state(connection.get());
  return connection;
}

std::string drain(BIO* memory) {
  std::string bytes(BIO_ctrl_pending(memory), '\0');
  if (!bytes.empty()) BIO_read(memory, bytes.data(), static_cast<int>(bytes.size()));
  return bytes;
}

}  // namespace

TlsHandshake performTlsHandshake(const Socket& socket, const std::string& host, const std::string& authorities,
                                 const Deadline& deadline) {
  ERR_clear_error();
  const Context context = makeContext(authorities);
  const Connection connection = makeConnection(context, host);
  for (;;) {
    const int result = SSL_do_handshake(connection.get());
    sendPreLogin(socket, drain(SSL_get_wbio(connection.get())), deadline);
    if (result == 1) break;
    if (SSL_get_error(connection.get(), result) != SSL_ERROR_WANT_READ) refuse();
    const std::string body = receivePacket(socket, deadline).body;
    BIO_write(SSL_get_rbio(connection.get()), body.data(), static_cast<int>(body.size()));
  }
  TlsHandshake answer;
  answer.protocol = SSL_get_version(connection.get());
  if (const long result = SSL_get_verify_result(connection.get()); result != X509_V_OK)
    answer.problem = X509_verify_cert_error_string(result);
  return answer;
}

}  // namespace korvel::db::net
