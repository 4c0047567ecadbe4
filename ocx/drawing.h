#pragma once

#include <windows.h>
// after windows.h
#include <ocidl.h>

#include "ocx/com_pointer.h"
#include "ocx/hosted_viewer.h"

namespace korvel::ocx {

/// The control painted where it has no window: into a container's device context or a metafile.
class Drawing : public IViewObject2 {
 public:
  HRESULT STDMETHODCALLTYPE Draw(DWORD aspect, LONG index, void* aspectFacts, DVTARGETDEVICE* device, HDC deviceContext,
                                 HDC context, LPCRECTL bounds, LPCRECTL window,
                                 BOOL(STDMETHODCALLTYPE* goOn)(ULONG_PTR), ULONG_PTR goOnArgument) noexcept override;
  HRESULT STDMETHODCALLTYPE GetColorSet(DWORD aspect, LONG index, void* aspectFacts, DVTARGETDEVICE* device,
                                        HDC deviceContext, LOGPALETTE** colors) noexcept override;
  HRESULT STDMETHODCALLTYPE Freeze(DWORD aspect, LONG index, void* aspectFacts, DWORD* number) noexcept override;
  HRESULT STDMETHODCALLTYPE Unfreeze(DWORD number) noexcept override;
  HRESULT STDMETHODCALLTYPE SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) noexcept override;
  HRESULT STDMETHODCALLTYPE GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) noexcept override;
  HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, LONG index, DVTARGETDEVICE* device, SIZEL* size) noexcept override;

 protected:
  Drawing() = default;
  ~Drawing() = default;

  [[nodiscard]] virtual HostedViewer& viewer() noexcept = 0;
  /// In hundredths of a millimetre.
  [[nodiscard]] virtual SIZE extent() const noexcept = 0;

  /// Tells the container that the control would be painted in another way.
  void announceView();

 private:
  ComPointer<IAdviseSink> sink_;
  DWORD sinkFlags_ = 0;
  DWORD sinkAspects_ = 0;
};

}  // namespace korvel::ocx
