#pragma once

#include <windows.h>
// after windows.h
#include <objbase.h>

#include <atomic>

#include "ocx/com_pointer.h"
#include "ocx/module.h"

namespace korvel::ocx {

/// Makes objects of one class.
class ClassFactory final : public IClassFactory {
 public:
  /// Makes an object, part of `outer` unless that is null. Throws Failure.
  using Maker = ComPointer<IUnknown> (*)(IUnknown* outer);

  explicit ClassFactory(Maker maker) : maker_(maker) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID identifier, void** object) noexcept override;
  ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() noexcept override;
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID identifier, void** object) noexcept override;
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override;

 private:
  ~ClassFactory() = default;

  const UseOfModule use_;
  const Maker maker_;
  std::atomic<ULONG> references_ = 1;
};

}  // namespace korvel::ocx
