// What Windows prescribes apart from its colours: a high-contrast theme, and whether applications are dark.
#include <windows.h>

#include "ui/style/palettes.h"
#include "ui/style/system_appearance.h"

namespace korvel::ui {
namespace {

bool isHighContrast() {
  HIGHCONTRASTW scheme{};
  scheme.cbSize = sizeof(scheme);
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(scheme), &scheme, 0) != 0 &&
         (scheme.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

/// Nothing on versions without dark windows, which do not have the value.
std::optional<bool> isDark() {
  DWORD light = 0;
  DWORD size = sizeof(light);
  const LSTATUS failure =
      RegGetValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize",
                   L"AppsUseLightTheme", RRF_RT_REG_DWORD, nullptr, &light, &size);
  return failure == ERROR_SUCCESS ? std::optional(light == 0) : std::nullopt;
}

}  // namespace

SystemAppearance readSystemAppearance() {
  const Scheme scheme = requestedScheme();
  const std::optional<bool> dark = isDark();
  // The toolkit's Windows style is never dark: dark windows use our style.
  const bool native = scheme == Scheme::Native || (scheme == Scheme::System && dark != true);
  return {isHighContrast(), dark, native};
}

}  // namespace korvel::ui
