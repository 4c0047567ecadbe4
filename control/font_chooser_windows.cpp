#include "control/font_chooser_windows.h"

#include <QFontInfo>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>

namespace korvel::control {
namespace {

constexpr DWORD screenAndPrinterFonts = 3;
constexpr double pointsOfAnInch = 72;
constexpr double stepsOfAPoint = 10;

/// Pixels an inch in the dialog's units.
int resolution() {
  const HDC screen = GetDC(nullptr);
  const int pixels = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return pixels;
}

LOGFONTW described(const QFont& font) {
  const double points = font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
  LOGFONTW description{};
  // Negative: the height of the letters without the space above them.
  description.lfHeight = -static_cast<LONG>(std::lround(points * resolution() / pointsOfAnInch));
  description.lfWeight = font.bold() ? FW_BOLD : FW_NORMAL;
  description.lfItalic = font.italic() ? TRUE : FALSE;
  description.lfCharSet = DEFAULT_CHARSET;
  const std::wstring name = font.family().toStdWString();
  // The last place is for the terminator.
  std::copy_n(name.begin(), std::min(name.size(), std::size(description.lfFaceName) - 1), description.lfFaceName);
  return description;
}

}  // namespace

std::optional<QFont> chooseFontWith(FontDialog dialog, HWND owner, const QFont& current) {
  LOGFONTW description = described(current);
  const double offeredPoints = -description.lfHeight * pointsOfAnInch / resolution();
  CHOOSEFONTW request{};
  request.lStructSize = sizeof(request);
  request.hwndOwner = owner;
  request.lpLogFont = &description;
  request.Flags = screenAndPrinterFonts | CF_INITTOLOGFONTSTRUCT;
  if (dialog(&request) == 0) return std::nullopt;

  QFont chosen(QString::fromWCharArray(description.lfFaceName));
  // The dialog takes pixels and returns tenths of a point: an unchanged size stays the exact one.
  const double size = request.iPointSize / stepsOfAPoint;
  const auto isNear = [size](double points) { return std::abs(size - points) < 1 / stepsOfAPoint; };
  const bool untouched = isNear(current.pointSizeF()) || isNear(offeredPoints);
  chosen.setPointSizeF(untouched && current.pointSizeF() > 0 ? current.pointSizeF() : size);
  chosen.setBold(description.lfWeight >= FW_SEMIBOLD);
  chosen.setItalic(description.lfItalic != 0);
  return chosen;
}

}  // namespace korvel::control
