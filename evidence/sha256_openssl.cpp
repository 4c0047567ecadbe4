#include <openssl/evp.h>

#include "base/error.h"
#include "evidence/sha256.h"

namespace korvel::evidence {

namespace {

void check(int result) {
  if (result != 1) throw Error(unspecifiedFailure, "the system's library does not compute SHA-256");
}

/// Looked up once: the look-up takes longer than the SHA-256 of a row.
EVP_MD* algorithm() {
  static const std::unique_ptr<EVP_MD, decltype(&EVP_MD_free)> found{EVP_MD_fetch(nullptr, "SHA256", nullptr),
                                                                     &EVP_MD_free};
  check(found ? 1 : 0);
  return found.get();
}

}  // namespace

struct Sha256::State {
  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
};

Sha256::Sha256() : state_(std::make_unique<State>()) {
  check(state_->context ? 1 : 0);
  check(EVP_DigestInit_ex2(state_->context.get(), algorithm(), nullptr));
}

Sha256::~Sha256() = default;

void Sha256::update(std::string_view bytes) {
  check(EVP_DigestUpdate(state_->context.get(), bytes.data(), bytes.size()));
}

Digest Sha256::finish() {
  Digest digest;
  check(EVP_DigestFinal_ex(state_->context.get(), digest.bytes.data(), nullptr));
  check(EVP_DigestInit_ex2(state_->context.get(), nullptr, nullptr));
  return digest;
}

}  // namespace korvel::evidence
