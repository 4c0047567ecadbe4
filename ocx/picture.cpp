#include "ocx/picture.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace korvel::ocx {
namespace {

// No screen is larger; a container that asks for more gets it enlarged.
constexpr LONG most = 8192;
constexpr int hundredthsOfAnInch = 2540;

SIZE density() noexcept {
  const HDC screen = ::GetDC(nullptr);
  const SIZE found{::GetDeviceCaps(screen, LOGPIXELSX), ::GetDeviceCaps(screen, LOGPIXELSY)};
  ::ReleaseDC(nullptr, screen);
  return found;
}

}  // namespace

HRESULT paintPicture(HostedViewer& viewer, HDC context, const RECT& bounds, SIZE pixels) {
  const SIZE size{std::clamp(pixels.cx, 1L, most), std::clamp(pixels.cy, 1L, most)};
  std::vector<std::uint32_t> picture(static_cast<std::size_t>(size.cx) * static_cast<std::size_t>(size.cy));
  if (const HRESULT result = viewer.paint(size, picture.data()); FAILED(result)) return result;
  BITMAPINFO description{};
  description.bmiHeader.biSize = sizeof(description.bmiHeader);
  description.bmiHeader.biWidth = size.cx;
  // The upper row first.
  description.bmiHeader.biHeight = -size.cy;
  description.bmiHeader.biPlanes = 1;
  description.bmiHeader.biBitCount = 32;
  description.bmiHeader.biCompression = BI_RGB;
  const int former = ::SetStretchBltMode(context, COLORONCOLOR);
  const int lines =
      ::StretchDIBits(context, bounds.left, bounds.top, bounds.right - bounds.left, bounds.bottom - bounds.top, 0, 0,
                      size.cx, size.cy, picture.data(), &description, DIB_RGB_COLORS, SRCCOPY);
  ::SetStretchBltMode(context, former);
  return lines == static_cast<int>(GDI_ERROR) ? E_FAIL : S_OK;
}

SIZE pixelsOf(SIZE hundredths) noexcept {
  const SIZE perInch = density();
  return {::MulDiv(hundredths.cx, perInch.cx, hundredthsOfAnInch),
          ::MulDiv(hundredths.cy, perInch.cy, hundredthsOfAnInch)};
}

SIZE hundredthsOf(SIZE pixels) noexcept {
  const SIZE perInch = density();
  return {::MulDiv(pixels.cx, hundredthsOfAnInch, perInch.cx), ::MulDiv(pixels.cy, hundredthsOfAnInch, perInch.cy)};
}

}  // namespace korvel::ocx
