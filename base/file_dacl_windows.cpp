#include "base/file_dacl_windows.h"

namespace korvel {

namespace {

bool isUnsupported(DWORD number) noexcept {
  return number == ERROR_NOT_SUPPORTED || number == ERROR_INVALID_FUNCTION || number == ERROR_CALL_NOT_IMPLEMENTED;
}

}  // namespace

PSECURITY_DESCRIPTOR FileDacl::descriptor() const {
  // The system's calls only read it, though they take a pointer to non-const.
  return const_cast<char*>(bytes_.data());  // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

DWORD FileDacl::readFrom(HANDLE file) {
  bytes_.clear();
  // The size may change between two calls; each gives the size it needs.
  for (DWORD needed = 0;;) {
    const auto room = static_cast<DWORD>(bytes_.size());
    if (GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, descriptor(), room, &needed) != 0) break;
    const DWORD number = GetLastError();
    if (number == ERROR_INSUFFICIENT_BUFFER && needed > room) {
      bytes_.resize(needed);
      continue;
    }
    bytes_.clear();
    return isUnsupported(number) ? ERROR_SUCCESS : number;
  }
  SECURITY_DESCRIPTOR_CONTROL control = 0;
  DWORD revision = 0;
  // Without this flag the system forgets which entries were inherited.
  if (GetSecurityDescriptorControl(descriptor(), &control, &revision) != 0 && (control & SE_DACL_AUTO_INHERITED) != 0)
    SetSecurityDescriptorControl(bytes_.data(), SE_DACL_AUTO_INHERIT_REQ, SE_DACL_AUTO_INHERIT_REQ);
  return ERROR_SUCCESS;
}

DWORD FileDacl::applyTo(HANDLE file) const {
  if (bytes_.empty() || SetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, descriptor()) != 0)
    return ERROR_SUCCESS;
  const DWORD number = GetLastError();
  return hasExplicitEntries() ? number : ERROR_SUCCESS;
}

bool FileDacl::hasExplicitEntries() const {
  if (bytes_.empty()) return false;
  SECURITY_DESCRIPTOR_CONTROL control = 0;
  DWORD revision = 0;
  BOOL present = FALSE;
  BOOL byDefault = FALSE;
  ACL* list = nullptr;
  if (GetSecurityDescriptorControl(descriptor(), &control, &revision) == 0 ||
      GetSecurityDescriptorDacl(descriptor(), &present, &list, &byDefault) == 0)
    return true;
  if ((control & SE_DACL_PROTECTED) != 0 || (present != FALSE && list == nullptr)) return true;
  for (DWORD i = 0; list != nullptr && i < list->AceCount; ++i) {
    void* entry = nullptr;
    if (GetAce(list, i, &entry) == 0 || (static_cast<const ACE_HEADER*>(entry)->AceFlags & INHERITED_ACE) == 0)
      return true;
  }
  return false;
}

}  // namespace korvel
