#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <limits>

#include "base/error.h"
#include "evidence/sha256.h"

namespace korvel::evidence {

namespace {

void check(NTSTATUS status) {
  if (status < 0) throw Error(unspecifiedFailure, "the system's library does not compute SHA-256");
}

/// Opened once and for all.
BCRYPT_ALG_HANDLE algorithm() {
  static const BCRYPT_ALG_HANDLE opened = [] {
    BCRYPT_ALG_HANDLE handle = nullptr;
    check(BCryptOpenAlgorithmProvider(&handle, BCRYPT_SHA256_ALGORITHM, nullptr, BCRYPT_HASH_REUSABLE_FLAG));
    return handle;
  }();
  return opened;
}

}  // namespace

struct Sha256::State {
  BCRYPT_HASH_HANDLE hash = nullptr;
};

Sha256::Sha256() : state_(std::make_unique<State>()) {
  check(BCryptCreateHash(algorithm(), &state_->hash, nullptr, 0, nullptr, 0, BCRYPT_HASH_REUSABLE_FLAG));
}

Sha256::~Sha256() {
  BCryptDestroyHash(state_->hash);
}

void Sha256::update(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t part = std::min<std::size_t>(bytes.size(), std::numeric_limits<ULONG>::max());
    // The function takes its input as if it changed it.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
    auto* const data = reinterpret_cast<PUCHAR>(const_cast<char*>(bytes.data()));
    check(BCryptHashData(state_->hash, data, static_cast<ULONG>(part), 0));
    bytes.remove_prefix(part);
  }
}

Digest Sha256::finish() {
  Digest digest;
  check(BCryptFinishHash(state_->hash, digest.bytes.data(), static_cast<ULONG>(digest.bytes.size()), 0));
  return digest;
}

}  // namespace korvel::evidence
