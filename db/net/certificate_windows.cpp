// Chains are built with a limit of time of their own only where this stands before the headers.
#define CERT_CHAIN_PARA_HAS_EXTRA_FIELDS

#include "db/net/certificate_windows.h"

#include <cstddef>
#include <string_view>
#include <vector>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "base/wide_text_windows.h"
#include "db/net/tls_handshake.h"

namespace korvel::db::net {

namespace {

struct FreeStore {
  void operator()(void* store) const noexcept { ::CertCloseStore(store, 0); }
};
using Store = std::unique_ptr<void, FreeStore>;

struct FreeEngine {
  void operator()(void* engine) const noexcept { ::CertFreeCertificateChainEngine(engine); }
};
/// Null means the system's own engine.
using Engine = std::unique_ptr<void, FreeEngine>;

struct FreeChain {
  void operator()(const CERT_CHAIN_CONTEXT* chain) const noexcept { ::CertFreeCertificateChain(chain); }
};
using Chain = std::unique_ptr<const CERT_CHAIN_CONTEXT, FreeChain>;

std::string lastMessage() {
  return systemMessage(static_cast<int>(::GetLastError()));
}

/// Adds the certificates of a file, each between its two lines, and says how many. A file that cannot be read has none.
int addCertificates(HCERTSTORE store, const std::string& file) {
  constexpr std::string_view begin = "-----BEGIN CERTIFICATE-----";
  constexpr std::string_view end = "-----END CERTIFICATE-----";
  std::string text;
  try {
    text = readFile(pathFromUtf8(file));
  } catch (const Error&) {
    return 0;
  }
  int added = 0;
  std::string_view rest = text;
  for (;;) {
    const auto from = rest.find(begin);
    if (from == std::string_view::npos) return added;
    const auto to = rest.find(end, from);
    if (to == std::string_view::npos) return added;
    const std::string_view one = rest.substr(from, to + end.size() - from);
    rest.remove_prefix(to + end.size());
    std::vector<BYTE> bytes(one.size());
    auto size = static_cast<DWORD>(bytes.size());
    if (::CryptStringToBinaryA(one.data(), static_cast<DWORD>(one.size()), CRYPT_STRING_BASE64HEADER, bytes.data(),
                               &size, nullptr, nullptr) != 0 &&
        ::CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, bytes.data(), size, CERT_STORE_ADD_ALWAYS,
                                           nullptr) != 0)
      ++added;
  }
}

/// The chain engine that trusts the certificates of `file` alone; `file` must not be empty.
Engine engineFor(const std::string& file) {
  const Store roots(::CertOpenStore(CERT_STORE_PROV_MEMORY, 0, 0, 0, nullptr));
  if (!roots) return nullptr;
  // It is not documented that an engine without roots trusts no certificate.
  if (addCertificates(roots.get(), file) == 0) refuseAuthorities(file);
  CERT_CHAIN_ENGINE_CONFIG config{};
  // Without the last member, which older systems do not know.
  config.cbSize = offsetof(CERT_CHAIN_ENGINE_CONFIG, dwExclusiveFlags);
  config.hExclusiveRoot = roots.get();
  HCERTCHAINENGINE engine = nullptr;
  ::CertCreateCertificateChainEngine(&config, &engine);
  return Engine(engine);
}

Chain chainOf(const Certificate& certificate, HCERTCHAINENGINE engine, const Deadline& deadline) {
  std::string usage = szOID_PKIX_KP_SERVER_AUTH;
  LPSTR usages = usage.data();
  CERT_CHAIN_PARA wanted{};
  wanted.cbSize = sizeof wanted;
  wanted.RequestedUsage.dwType = USAGE_MATCH_TYPE_AND;
  wanted.RequestedUsage.Usage = {1, &usages};
  // Nothing would mean the system's own limit.
  wanted.dwUrlRetrievalTimeout = static_cast<DWORD>(deadline.left().count()) + 1;
  const CERT_CHAIN_CONTEXT* chain = nullptr;
  ::CertGetCertificateChain(engine, certificate.get(), nullptr, certificate->hCertStore, &wanted, 0, nullptr, &chain);
  return Chain(chain);
}

}  // namespace

std::string problemOf(const Certificate& certificate, const std::string& host, const std::string& authorities,
                      const Deadline& deadline) {
  Engine engine;
  if (!authorities.empty()) {
    engine = engineFor(authorities);
    if (!engine) return lastMessage();
  }
  const Chain chain = chainOf(certificate, engine.get(), deadline);
  if (!chain) return lastMessage();

  std::wstring name = lossyWideFromUtf8(host);
  SSL_EXTRA_CERT_CHAIN_POLICY_PARA server{};
  server.cbSize = sizeof server;
  server.dwAuthType = AUTHTYPE_SERVER;
  server.pwszServerName = name.data();
  CERT_CHAIN_POLICY_PARA policy{};
  policy.cbSize = sizeof policy;
  policy.pvExtraPolicyPara = &server;
  CERT_CHAIN_POLICY_STATUS status{};
  status.cbSize = sizeof status;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): how the system names its policies
  if (::CertVerifyCertificateChainPolicy(CERT_CHAIN_POLICY_SSL, chain.get(), &policy, &status) == 0)
    return lastMessage();
  // Some systems' policies accept a chain that ends before an authority.
  if (status.dwError == 0 && (chain->TrustStatus.dwErrorStatus & CERT_TRUST_IS_PARTIAL_CHAIN) != 0)
    return systemMessage(static_cast<int>(CERT_E_CHAINING));
  return status.dwError == 0 ? std::string{} : systemMessage(static_cast<int>(status.dwError));
}

}  // namespace korvel::db::net
