#pragma once

#include <windows.h>
// after windows.h
#include <ocidl.h>

#include <string>
#include <vector>

#include "ocx/com_pointer.h"
#include "ocx/control_types.h"
#include "ocx/hosted_viewer.h"

namespace korvel::ocx {

/// The properties that a container stores with its form, in its bag, in a stream or in a storage. What they are worth
/// by default, and which values fit, the viewer knows.
class StoredProperties : public IPersistPropertyBag, public IPersistStreamInit, public IPersistStorage {
 public:
  HRESULT STDMETHODCALLTYPE GetClassID(CLSID* identifier) noexcept override;
  HRESULT STDMETHODCALLTYPE InitNew() noexcept override;
  HRESULT STDMETHODCALLTYPE IsDirty() noexcept override;

  HRESULT STDMETHODCALLTYPE Load(IPropertyBag* bag, IErrorLog* log) noexcept override;
  HRESULT STDMETHODCALLTYPE Save(IPropertyBag* bag, BOOL clearDirty, BOOL all) noexcept override;

  HRESULT STDMETHODCALLTYPE Load(IStream* stream) noexcept override;
  HRESULT STDMETHODCALLTYPE Save(IStream* stream, BOOL clearDirty) noexcept override;
  HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) noexcept override;

  HRESULT STDMETHODCALLTYPE InitNew(IStorage* storage) noexcept override;
  HRESULT STDMETHODCALLTYPE Load(IStorage* storage) noexcept override;
  HRESULT STDMETHODCALLTYPE Save(IStorage* storage, BOOL sameAsLoad) noexcept override;
  HRESULT STDMETHODCALLTYPE SaveCompleted(IStorage* storage) noexcept override;
  HRESULT STDMETHODCALLTYPE HandsOffStorage() noexcept override;

 protected:
  StoredProperties() = default;
  ~StoredProperties() = default;

  [[nodiscard]] virtual HostedViewer& viewer() noexcept = 0;
  [[nodiscard]] virtual const ControlTypes& types() const noexcept = 0;
  void setDirty() noexcept { dirty_ = true; }

 private:
  HRESULT load(const std::vector<StoredValue>& values);

  bool dirty_ = false;
};

}  // namespace korvel::ocx
