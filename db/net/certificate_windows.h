#pragma once

#include <winsock2.h>
// After the sockets, in whose place it would bring older ones.
#include <wincrypt.h>

#include <memory>
#include <string>

#include "db/net/deadline.h"

namespace korvel::db::net {

struct FreeCertificate {
  void operator()(const CERT_CONTEXT* certificate) const noexcept { ::CertFreeCertificateContext(certificate); }
};
/// A certificate, with what came along with it.
using Certificate = std::unique_ptr<const CERT_CONTEXT, FreeCertificate>;

/// Why a server of that name that shows this certificate cannot be trusted, in the system's words; empty: it can.
/// `authorities` is a file of certificates that alone are trusted, empty for those that the system trusts. What the
/// system has to fetch from elsewhere must come by the deadline. Throws Error for a file in which no certificate can be
/// read.
[[nodiscard]] std::string problemOf(const Certificate& certificate, const std::string& host,
                                    const std::string& authorities, const Deadline& deadline);

}  // namespace korvel::db::net
