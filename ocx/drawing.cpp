#include "ocx/drawing.h"

#include <array>

#include "ocx/failure.h"
#include "ocx/picture.h"

namespace korvel::ocx {

HRESULT Drawing::Draw(DWORD aspect, LONG index, void* /*aspectFacts*/, DVTARGETDEVICE* /*device*/,
                      HDC /*deviceContext*/, HDC context, LPCRECTL bounds, LPCRECTL /*window*/,
                      BOOL(STDMETHODCALLTYPE* /*goOn*/)(ULONG_PTR), ULONG_PTR /*goOnArgument*/) noexcept {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (index != -1) return DV_E_LINDEX;
  if (context == nullptr || bounds == nullptr) return E_POINTER;
  return guarded([&] {
    const RECT place{bounds->left, bounds->top, bounds->right, bounds->bottom};
    SIZE pixels = pixelsOf(extent());
    if (::GetDeviceCaps(context, TECHNOLOGY) != DT_METAFILE) {
      std::array<POINT, 2> corners{{{place.left, place.top}, {place.right, place.bottom}}};
      ::LPtoDP(context, corners.data(), static_cast<int>(corners.size()));
      pixels = {std::abs(corners[1].x - corners[0].x), std::abs(corners[1].y - corners[0].y)};
    }
    return paintPicture(viewer(), context, place, pixels);
  });
}

// Without palettes there is no set of colours.
HRESULT Drawing::GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, LOGPALETTE** colors) noexcept {
  if (colors == nullptr) return E_POINTER;
  *colors = nullptr;
  return S_FALSE;
}

HRESULT Drawing::Freeze(DWORD, LONG, void*, DWORD*) noexcept {
  return E_NOTIMPL;
}
HRESULT Drawing::Unfreeze(DWORD) noexcept {
  return E_NOTIMPL;
}

HRESULT Drawing::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) noexcept {
  if (sink != nullptr && aspects != DVASPECT_CONTENT) return DV_E_DVASPECT;
  sink_ = ComPointer<IAdviseSink>::shared(sink);
  sinkAspects_ = aspects;
  sinkFlags_ = flags;
  if (sink != nullptr && (flags & ADVF_PRIMEFIRST) != 0) announceView();
  return S_OK;
}

HRESULT Drawing::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) noexcept {
  if (aspects != nullptr) *aspects = sinkAspects_;
  if (flags != nullptr) *flags = sinkFlags_;
  if (sink != nullptr) *sink = ComPointer<IAdviseSink>(sink_).handOver();
  return S_OK;
}

HRESULT Drawing::GetExtent(DWORD aspect, LONG index, DVTARGETDEVICE* /*device*/, SIZEL* size) noexcept {
  if (size == nullptr) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (index != -1) return DV_E_LINDEX;
  *size = extent();
  return S_OK;
}

void Drawing::announceView() {
  // Telling the sink may replace it.
  const ComPointer<IAdviseSink> told = sink_;
  if (!told) return;
  if ((sinkFlags_ & ADVF_ONLYONCE) != 0) sink_ = {};
  told->OnViewChange(DVASPECT_CONTENT, -1);
}

}  // namespace korvel::ocx
