#include "ocx/control_types.h"

#include <string>

#include "ocx/failure.h"
#include "ocx/module.h"

namespace korvel::ocx {
namespace {

ComPointer<ITypeInfo> typeOf(ITypeLib& library, const wchar_t* name) {
  std::wstring wanted(name);
  ComPointer<ITypeInfo> found;
  MEMBERID member = MEMBERID_NIL;
  USHORT count = 1;
  check(library.FindName(wanted.data(), 0, found.receive(), &member, &count));
  if (count == 0) throw Failure(TYPE_E_ELEMENTNOTFOUND, systemText(TYPE_E_ELEMENTNOTFOUND));
  return found;
}

GUID identifierOf(ITypeInfo& type) {
  TYPEATTR* attributes = nullptr;
  check(type.GetTypeAttr(&attributes));
  const GUID identifier = attributes->guid;
  type.ReleaseTypeAttr(attributes);
  return identifier;
}

std::shared_ptr<const ControlTypes> load() {
  ComPointer<ITypeLib> library;
  check(::LoadTypeLibEx(ownFile().c_str(), REGKIND_NONE, library.receive()));
  auto types = std::make_shared<ControlTypes>();
  types->control = typeOf(*library.get(), L"AuditViewer");
  types->members = typeOf(*library.get(), L"_AuditViewer");
  types->databaseTypes = typeOf(*library.get(), L"DatabaseTypeEnum");
  types->controlId = identifierOf(*types->control.get());
  types->membersId = identifierOf(*types->members.get());
  types->eventsId = identifierOf(*typeOf(*library.get(), L"_AuditViewerEvents").get());
  return types;
}

/// The lock of the system, which needs nothing to be given back: the compiler's own locks keep two handles for each
/// thread, also when the file that contains their library is unloaded.
class Locked {
 public:
  explicit Locked(SRWLOCK& lock) : lock_(lock) { ::AcquireSRWLockExclusive(&lock_); }
  ~Locked() { ::ReleaseSRWLockExclusive(&lock_); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

 private:
  SRWLOCK& lock_;
};

// Outside of the function, where they would be made under one of the compiler's locks.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): who uses the types shares them
SRWLOCK lastTypesLock = SRWLOCK_INIT;
/// Not kept without a user: nothing may be released while the file is being unloaded.
constinit std::weak_ptr<const ControlTypes> lastTypes;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

}  // namespace

std::shared_ptr<const ControlTypes> controlTypes() {
  const Locked locked(lastTypesLock);
  std::shared_ptr<const ControlTypes> types = lastTypes.lock();
  if (!types) {
    types = load();
    lastTypes = types;
  }
  return types;
}

}  // namespace korvel::ocx
