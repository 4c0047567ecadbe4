#pragma once

#include <windows.h>
// after windows.h
#include <ocidl.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>

#include "ocx/com_pointer.h"
#include "ocx/control_types.h"
#include "ocx/edited_properties.h"
#include "ocx/module.h"

namespace korvel::ocx {

/// The class of property pages. The number never changes.
inline constexpr CLSID propertyPageId{0x676D23DE, 0x17D5, 0x4B24, {0xA1, 0x7D, 0xAF, 0x04, 0xFE, 0xD5, 0xF3, 0x4D}};

/// The page of the stored properties in a container's property window, for one control or several: a dialog of the
/// system's own elements. Where the controls differ, a field is undetermined, and stays what it is unless it is
/// changed.
class PropertyPage final : public IPropertyPage2 {
 public:
  /// A new page, which cannot be part of an outer object. Throws Failure.
  [[nodiscard]] static ComPointer<IUnknown> create(IUnknown* outer);

  PropertyPage(const PropertyPage&) = delete;
  PropertyPage& operator=(const PropertyPage&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID identifier, void** object) noexcept override;
  ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() noexcept override;

  HRESULT STDMETHODCALLTYPE SetPageSite(IPropertyPageSite* site) noexcept override;
  HRESULT STDMETHODCALLTYPE Activate(HWND parent, LPCRECT place, BOOL modal) noexcept override;
  HRESULT STDMETHODCALLTYPE Deactivate() noexcept override;
  HRESULT STDMETHODCALLTYPE GetPageInfo(PROPPAGEINFO* information) noexcept override;
  HRESULT STDMETHODCALLTYPE SetObjects(ULONG count, IUnknown** objects) noexcept override;
  HRESULT STDMETHODCALLTYPE Show(UINT command) noexcept override;
  HRESULT STDMETHODCALLTYPE Move(LPCRECT place) noexcept override;
  HRESULT STDMETHODCALLTYPE IsPageDirty() noexcept override;
  HRESULT STDMETHODCALLTYPE Apply() noexcept override;
  HRESULT STDMETHODCALLTYPE Help(LPCOLESTR folder) noexcept override;
  HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message) noexcept override;
  /// Gives the focus to the property's field.
  HRESULT STDMETHODCALLTYPE EditProperty(DISPID property) noexcept override;

 private:
  explicit PropertyPage(std::shared_ptr<const ControlTypes> types);
  ~PropertyPage();

  static INT_PTR CALLBACK handleMessage(HWND dialog, UINT message, WPARAM first, LPARAM second) noexcept;
  void opened(HWND dialog);
  /// An element says `notification`.
  void commanded(int element, UINT notification);
  /// Shows the properties as they are.
  void fill();
  void fill(std::size_t field);
  void showCaption(std::size_t field);
  void showFailure(const std::wstring& text);
  void focus(std::size_t field);

  const UseOfModule use_;
  const std::shared_ptr<const ControlTypes> types_;
  std::atomic<ULONG> references_ = 1;
  EditedProperties properties_;
  ComPointer<IPropertyPageSite> site_;
  HWND dialog_ = nullptr;
  /// Elements that are being filled tell of changes, too.
  bool filling_ = false;
};

}  // namespace korvel::ocx
