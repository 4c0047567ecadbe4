#pragma once

#include <windows.h>
// after windows.h
#include <objbase.h>

#include <atomic>

#include "ocx/module.h"

namespace korvel::ocx {

/// Makes controls.
class ClassFactory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID identifier, void** object) noexcept override;
  ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() noexcept override;
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID identifier, void** object) noexcept override;
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override;

 private:
  ~ClassFactory() = default;

  const UseOfModule use_;
  std::atomic<ULONG> references_ = 1;
};

}  // namespace korvel::ocx
