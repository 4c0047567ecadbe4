#include <winsock2.h>
// After the sockets, in whose place they would bring older ones.
#include <schannel.h>
#include <wincrypt.h>
#define SECURITY_WIN32
#include <security.h>

#include <array>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "base/error.h"
#include "base/system_errors.h"
#include "base/wide_text_windows.h"
#include "db/net/certificate_windows.h"
#include "db/net/pre_login.h"
#include "db/net/tls_handshake.h"

namespace korvel::db::net {

namespace {

/// More than any server sends at once: bounds the memory that a hostile server can take.
constexpr std::size_t longestFlight = std::size_t{1024} * 1024;

[[noreturn]] void refuse(SECURITY_STATUS status) {
  throw systemError(static_cast<int>(status), "the handshake failed");
}

/// The side of a handshake that asks, with no certificate of its own. The server's is not judged on the way.
class Credentials {
 public:
  Credentials() {
    SCHANNEL_CRED wanted{};
    wanted.dwVersion = SCHANNEL_CRED_VERSION;
    wanted.dwFlags = SCH_CRED_MANUAL_CRED_VALIDATION | SCH_CRED_NO_DEFAULT_CREDS;
    std::wstring package = UNISP_NAME_W;
    const auto status = ::AcquireCredentialsHandleW(nullptr, package.data(), SECPKG_CRED_OUTBOUND, nullptr, &wanted,
                                                    nullptr, nullptr, &handle_, nullptr);
    if (status != SEC_E_OK) refuse(status);
  }
  ~Credentials() { ::FreeCredentialsHandle(&handle_); }
  Credentials(const Credentials&) = delete;
  Credentials& operator=(const Credentials&) = delete;

  [[nodiscard]] CredHandle* get() noexcept { return &handle_; }

 private:
  CredHandle handle_{};
};

/// The bytes that the security layer hands out, given back by destruction.
class Token {
 public:
  ~Token() {
    if (buffer.pvBuffer != nullptr) ::FreeContextBuffer(buffer.pvBuffer);
  }
  Token() = default;
  Token(const Token&) = delete;
  Token& operator=(const Token&) = delete;

  [[nodiscard]] std::string_view bytes() const noexcept {
    return {static_cast<const char*>(buffer.pvBuffer), buffer.pvBuffer == nullptr ? 0 : buffer.cbBuffer};
  }

  SecBuffer buffer{0, SECBUFFER_TOKEN, nullptr};
};

class Handshake {
 public:
  Handshake(const Socket& socket, const std::string& host, const Deadline& deadline)
      : socket_(socket), host_(lossyWideFromUtf8(host)), deadline_(deadline) {}
  ~Handshake() {
    if (begun_) ::DeleteSecurityContext(&context_);
  }
  Handshake(const Handshake&) = delete;
  Handshake& operator=(const Handshake&) = delete;

  void run() {
    bool asked = false;
    for (SECURITY_STATUS status = step(); status != SEC_E_OK; status = step()) {
      if (status == SEC_I_INCOMPLETE_CREDENTIALS && !asked) {
        asked = true;  // for a client certificate, which we do not have; the same bytes are answered without one now
        continue;
      }
      const bool incomplete = status == SEC_E_INCOMPLETE_MESSAGE;
      if (!incomplete && status != SEC_I_CONTINUE_NEEDED) refuse(status);
      if (received_.size() > longestFlight) refuse(SEC_E_ILLEGAL_MESSAGE);
      if (incomplete || received_.empty()) received_ += receivePacket(socket_, deadline_).body;
    }
  }

  [[nodiscard]] CtxtHandle* context() noexcept { return &context_; }

 private:
  /// Shows the security layer what has been received, and sends what it has to say.
  SECURITY_STATUS step() {
    constexpr ULONG wanted = ISC_REQ_CONFIDENTIALITY | ISC_REQ_REPLAY_DETECT | ISC_REQ_SEQUENCE_DETECT |
                             ISC_REQ_STREAM | ISC_REQ_ALLOCATE_MEMORY | ISC_REQ_MANUAL_CRED_VALIDATION |
                             ISC_REQ_USE_SUPPLIED_CREDS;
    std::array<SecBuffer, 2> in{SecBuffer{static_cast<ULONG>(received_.size()), SECBUFFER_TOKEN, received_.data()},
                                SecBuffer{0, SECBUFFER_EMPTY, nullptr}};
    SecBufferDesc inList{SECBUFFER_VERSION, static_cast<ULONG>(in.size()), in.data()};
    Token token;
    SecBufferDesc outList{SECBUFFER_VERSION, 1, &token.buffer};
    ULONG granted = 0;
    const auto status = ::InitializeSecurityContextW(credentials_.get(), begun_ ? &context_ : nullptr, host_.data(),
                                                     wanted, 0, 0, begun_ ? &inList : nullptr, 0,
                                                     begun_ ? nullptr : &context_, &outList, &granted, nullptr);
    if (status == SEC_E_INCOMPLETE_MESSAGE) return status;
    begun_ = begun_ || status >= 0;
    // An alert is sent too: the server can log why.
    if (status >= 0 || (granted & ISC_RET_EXTENDED_ERROR) != 0) sendPreLogin(socket_, token.bytes(), deadline_);
    if (status != SEC_I_INCOMPLETE_CREDENTIALS) {
      const std::size_t left = in[1].BufferType == SECBUFFER_EXTRA ? in[1].cbBuffer : 0;
      received_.erase(0, received_.size() - left);
    }
    return status;
  }

  const Socket& socket_;
  std::wstring host_;
  const Deadline& deadline_;
  Credentials credentials_;
  CtxtHandle context_{};
  bool begun_ = false;
  std::string received_;
};

struct NamedProtocol {
  DWORD bits;
  std::string_view name;
};
constexpr DWORD tls13 = 0x3000;  // both sides of it; the compiler's headers do not have it
constexpr std::array<NamedProtocol, 4> protocols = {
    {{SP_PROT_TLS1_0, "TLSv1"}, {SP_PROT_TLS1_1, "TLSv1.1"}, {SP_PROT_TLS1_2, "TLSv1.2"}, {tls13, "TLSv1.3"}}};

std::string protocolOf(CtxtHandle* context) {
  SecPkgContext_ConnectionInfo info{};
  if (::QueryContextAttributesW(context, SECPKG_ATTR_CONNECTION_INFO, &info) != SEC_E_OK) return {};
  for (const NamedProtocol& protocol : protocols)
    if ((info.dwProtocol & protocol.bits) != 0) return std::string(protocol.name);
  return "SSL";
}

}  // namespace

TlsHandshake performTlsHandshake(const Socket& socket, const std::string& host, const std::string& authorities,
                                 const Deadline& deadline) {
  Handshake handshake(socket, host, deadline);
  handshake.run();
  const CERT_CONTEXT* shown = nullptr;
  const auto status = ::QueryContextAttributesW(handshake.context(), SECPKG_ATTR_REMOTE_CERT_CONTEXT, &shown);
  if (status != SEC_E_OK) refuse(status);
  const Certificate certificate(shown);
  return {protocolOf(handshake.context()), problemOf(certificate, host, authorities, deadline)};
}

}  // namespace korvel::db::net
