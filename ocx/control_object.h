#pragma once

#include <windows.h>
// after windows.h
#include <ocidl.h>

#include <atomic>
#include <memory>

#include "ocx/connection_points.h"
#include "ocx/control_types.h"
#include "ocx/drawing.h"
#include "ocx/hosted_viewer.h"
#include "ocx/module.h"
#include "ocx/placement.h"
#include "ocx/stored_properties.h"

namespace korvel::ocx {

/// The type library's interface, in its order.
class AuditViewerInterface : public IDispatch {
 public:
#define KORVEL_MEMBER(name, parameters, arguments) virtual HRESULT STDMETHODCALLTYPE name parameters noexcept = 0;
#include "audit_viewer_members.inc"
#undef KORVEL_MEMBER

 protected:
  ~AuditViewerInterface() = default;
};

/// One control, as containers see it. Can be part of another object, which then answers for its interfaces.
class ControlObject final : public AuditViewerInterface,
                            public IProvideClassInfo2,
                            public ISupportErrorInfo,
                            public IPerPropertyBrowsing,
                            public ISpecifyPropertyPages,
                            public ConnectionPoints,
                            public StoredProperties,
                            public Placement,
                            public Drawing,
                            private ViewerOwner {
 public:
  /// Makes a control, part of `outer` unless that is null. Returns its own IUnknown. Throws Failure.
  [[nodiscard]] static ComPointer<IUnknown> create(IUnknown* outer);

  ControlObject(const ControlObject&) = delete;
  ControlObject& operator=(const ControlObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID identifier, void** object) noexcept override;
  ULONG STDMETHODCALLTYPE AddRef() noexcept override;
  ULONG STDMETHODCALLTYPE Release() noexcept override;

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID language, ITypeInfo** type) noexcept override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID language,
                                          DISPID* numbers) noexcept override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID reserved, LCID language, WORD flags, DISPPARAMS* arguments,
                                   VARIANT* result, EXCEPINFO* failure, UINT* wrongArgument) noexcept override;
#define KORVEL_MEMBER(name, parameters, arguments) HRESULT STDMETHODCALLTYPE name parameters noexcept override;
#include "audit_viewer_members.inc"
#undef KORVEL_MEMBER

  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** type) noexcept override;
  HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* identifier) noexcept override;

  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID identifier) noexcept override;

  HRESULT STDMETHODCALLTYPE GetDisplayString(DISPID property, BSTR* text) noexcept override;
  HRESULT STDMETHODCALLTYPE MapPropertyToPage(DISPID property, CLSID* page) noexcept override;
  HRESULT STDMETHODCALLTYPE GetPredefinedStrings(DISPID property, CALPOLESTR* texts, CADWORD* values) noexcept override;
  HRESULT STDMETHODCALLTYPE GetPredefinedValue(DISPID property, DWORD value, VARIANT* result) noexcept override;

  HRESULT STDMETHODCALLTYPE GetPages(CAUUID* pages) noexcept override;

 protected:
  HostedViewer& viewer() noexcept override {
    return *viewer_;
  }
  const ControlTypes& types() const noexcept override {
    return *types_;
  }
  SIZE extent() const noexcept override {
    return size();
  }
  void viewChanged() noexcept override {
    announceView();
  }
  HRESULT openPropertyFrame(HWND owner) override;

 private:
  /// The object's own IUnknown, which counts.
  class Identity final : public IUnknown {
   public:
    explicit Identity(ControlObject& control) : control_(control) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID identifier, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override;

   private:
    ControlObject& control_;
    std::atomic<ULONG> references_ = 1;
  };

  ControlObject(IUnknown* outer, std::shared_ptr<const ControlTypes> types);
  ~ControlObject();
  void* interfaceOf(REFIID identifier);

  void databaseSelected(const wchar_t* database) noexcept override;
  void exitApp() noexcept override;
  void propertyChanged(const wchar_t* name) noexcept override;
  void focusEntered() noexcept override;
  void dialogOpen(bool open) noexcept override;

  const UseOfModule use_;
  const std::shared_ptr<const ControlTypes> types_;
  Identity identity_{*this};
  /// Whose references count: another object, or this one's identity.
  IUnknown* const outer_;
  HostedViewer* viewer_ = nullptr;
};

}  // namespace korvel::ocx
