#include "ocx/class_factory.h"

#include "ocx/failure.h"

namespace korvel::ocx {

HRESULT ClassFactory::QueryInterface(REFIID identifier, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!IsEqualIID(identifier, IID_IUnknown) && !IsEqualIID(identifier, IID_IClassFactory)) return E_NOINTERFACE;
  *object = static_cast<IClassFactory*>(this);
  AddRef();
  return S_OK;
}

ULONG ClassFactory::Release() noexcept {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID identifier, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  // An outer object must ask for what only the object itself can give.
  if (outer != nullptr && !IsEqualIID(identifier, IID_IUnknown)) return CLASS_E_NOAGGREGATION;
  return guarded([&] { return maker_(outer)->QueryInterface(identifier, object); });
}

HRESULT ClassFactory::LockServer(BOOL lock) noexcept {
  lockModule(lock != FALSE);
  return S_OK;
}

}  // namespace korvel::ocx
