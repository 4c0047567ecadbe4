#include "ui/style/theme.h"

#include <QFont>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <algorithm>
#include <array>
#include <cmath>

#include "ui/style/palettes.h"
#include "ui/style/system_appearance.h"

namespace korvel::ui {
namespace {

constexpr double readable = 4.5;
constexpr double visible = 3.0;

double linear(double channel) {
  return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double worstContrast(const QColor& color, std::initializer_list<QColor> grounds) {
  double worst = 21;
  for (const QColor& ground : grounds) worst = std::min(worst, contrastRatio(color, ground));
  return worst;
}

/// `wanted`, mixed with as much of `strongest` as the contrast on all backgrounds needs.
QColor contrasting(const QColor& wanted, const QColor& strongest, double least, std::initializer_list<QColor> grounds) {
  for (int step = 0; step < 40; ++step) {
    const QColor candidate = mixed(wanted, strongest, step / 40.0);
    if (worstContrast(candidate, grounds) >= least) return candidate;
  }
  return strongest;
}

/// `wanted`, moved towards `ground` only as far as `ink` needs it to be read.
QColor readableTint(const QColor& wanted, const QColor& ground, const QColor& ink) {
  for (int step = 0; step < 40; ++step) {
    const QColor candidate = mixed(wanted, ground, step / 40.0);
    if (contrastRatio(ink, candidate) >= readable) return candidate;
  }
  return ground;
}

QColor opaque(QColor color) {
  color.setAlpha(255);
  return color.toRgb();
}

/// White where it is readable, else a soft black, else black. Black or white is readable on any colour.
QColor blackOrWhite(const QColor& ground) {
  for (const QColor& ink : {QColor(Qt::white), QColor(0x12, 0x18, 0x22)}) {
    if (contrastRatio(ink, ground) >= readable) return ink;
  }
  return Qt::black;
}

/// The accent, darkened until white text is readable on it: filled buttons have white text in light and dark windows.
QColor fillOf(const QColor& accent) {
  QColor fill = accent;
  for (int step = 0; step < 60 && contrastRatio(Qt::white, fill) < readable; ++step) {
    fill = mixed(accent, Qt::black, step / 60.0);
  }
  return fill;
}

/// The palette's colours unchanged, as high contrast needs them.
Theme plain(const QPalette& palette) {
  const auto color = [&](QPalette::ColorRole role) { return opaque(palette.color(QPalette::Active, role)); };
  Theme theme;
  theme.dark = isDark(palette);
  theme.window = color(QPalette::Window);
  theme.surface = theme.header = theme.alternateRow = theme.hover = theme.pressed = color(QPalette::Base);
  theme.removed = theme.added = theme.surface;
  theme.removedLine = theme.addedLine = color(QPalette::Text);
  theme.text = theme.muted = theme.border = theme.control = color(QPalette::WindowText);
  theme.disabled = opaque(palette.color(QPalette::Disabled, QPalette::WindowText));
  theme.selection = theme.accent = color(QPalette::Highlight);
  theme.onSelection = theme.onAccent = color(QPalette::HighlightedText);
  // The platform's own style draws the buttons and fills none of them.
  theme.fill = theme.fillHover = theme.fillPressed = color(QPalette::Button);
  theme.onFill = color(QPalette::ButtonText);
  return theme;
}

Theme derive(const QPalette& palette) {
  if (systemAppearance().highContrast) return plain(palette);
  Theme theme;
  theme.dark = isDark(palette);
  theme.window = opaque(palette.color(QPalette::Active, QPalette::Window));
  theme.surface = opaque(palette.color(QPalette::Active, QPalette::Base));
  const QColor end = theme.dark ? QColor(Qt::white) : QColor(Qt::black);
  const auto toned = [&](double light, double dark) { return mixed(theme.surface, end, theme.dark ? dark : light); };
  // The tints are slightly blue, as in the design: beside a blue accent that looks neutral.
  const QColor slate = theme.dark ? QColor(0xc0, 0xcc, 0xe0) : QColor(0x20, 0x38, 0x68);
  const auto tinted = [&](double light, double dark) { return mixed(theme.surface, slate, theme.dark ? dark : light); };
  theme.header = tinted(0.075, 0.05);
  theme.alternateRow = tinted(0.03, 0.03);
  theme.hover = tinted(0.06, 0.07);
  theme.pressed = tinted(0.12, 0.13);
  theme.border = tinted(0.19, 0.13);

  const QColor red(theme.dark ? QColor(0xf0, 0x6a, 0x60) : QColor(0xd0, 0x36, 0x2c));
  const QColor green(theme.dark ? QColor(0x4c, 0xc0, 0x80) : QColor(0x2c, 0x9a, 0x5c));
  theme.removed = mixed(theme.surface, red, theme.dark ? 0.26 : 0.14);
  theme.added = mixed(theme.surface, green, theme.dark ? 0.26 : 0.16);
  theme.removedLine = contrasting(red, end, visible + 0.15, {theme.surface, theme.removed});
  theme.addedLine = contrasting(green, end, visible + 0.15, {theme.surface, theme.added});

  const QColor chosen = chosenHighlight(palette);
  const QColor blue = theme.dark ? QColor(0x6e, 0xa8, 0xfe) : QColor(0x1f, 0x6f, 0xeb);
  const QColor wantedAccent = chosen.isValid() ? opaque(chosen) : blue;
  theme.fill = theme.dark && !chosen.isValid() ? QColor(0x1f, 0x6f, 0xeb) : fillOf(wantedAccent);
  theme.selection = mixed(theme.surface, theme.dark ? theme.fill : wantedAccent, theme.dark ? 0.22 : 0.12);

  const QColor wantedText = opaque(palette.color(QPalette::Active, QPalette::WindowText));
  theme.text = contrasting(
      wantedText, end, readable,
      {theme.window, theme.surface, theme.header, theme.selection, theme.pressed, theme.removed, theme.added});
  theme.onSelection = theme.text;
  const QColor amber(0xff, 0xb8, 0x1c);
  const auto foundTint = [&](double light, double dark) {
    return readableTint(mixed(theme.surface, amber, theme.dark ? dark : light), theme.surface, theme.text);
  };
  theme.found = foundTint(0.32, 0.28);
  theme.foundCurrent = foundTint(0.75, 0.48);
  // No text has the accent colour, so the lower contrast that symbols need suffices and the blue is kept.
  theme.accent =
      contrasting(wantedAccent, end, visible + 0.15, {theme.window, theme.surface, theme.header, theme.selection});
  theme.muted = contrasting(mixed(theme.text, theme.surface, theme.dark ? 0.38 : 0.28), theme.text, readable + 0.2,
                            {theme.window, theme.surface, theme.header, theme.alternateRow});
  theme.disabled = contrasting(mixed(theme.text, theme.surface, 0.56), theme.text, visible + 0.15,
                               {theme.window, theme.surface, theme.header, theme.hover, theme.selection});
  theme.control = contrasting(toned(0.3, 0.3), theme.text, visible + 0.15,
                              {theme.window, theme.surface, theme.alternateRow, theme.hover, theme.selection});
  theme.onAccent = blackOrWhite(theme.accent);

  theme.fillHover = mixed(theme.fill, Qt::black, 0.10);
  theme.fillPressed = mixed(theme.fill, Qt::black, 0.22);
  theme.onFill = Qt::white;
  return theme;
}

}  // namespace

double contrastRatio(const QColor& one, const QColor& other) {
  const double first = luminance(one);
  const double second = luminance(other);
  return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

QColor mixed(const QColor& from, const QColor& to, double share) {
  const auto between = [share](int a, int b) { return static_cast<int>(std::lround(a + (b - a) * share)); };
  return {between(from.red(), to.red()), between(from.green(), to.green()), between(from.blue(), to.blue())};
}

const Theme& Theme::of(const QPalette& palette) {
  struct Entry {
    qint64 key = 0;
    bool used = false;
    bool highContrast = false;
    Theme theme;
  };
  // Palettes are identified by their cache key. A window has few palettes, so a reference stays valid much longer than
  // one paint call: until its entry is reused.
  static std::array<Entry, 32> entries;
  static std::size_t next = 0;
  const qint64 key = palette.cacheKey();
  const bool highContrast = systemAppearance().highContrast;
  for (const Entry& entry : entries) {
    if (entry.used && entry.key == key && entry.highContrast == highContrast) return entry.theme;
  }
  Entry& entry = entries.at(next);
  next = (next + 1) % entries.size();
  entry = {key, true, highContrast, derive(palette)};
  return entry.theme;
}

const Theme& Theme::of(const QWidget& widget) {
  return of(widget.palette());
}

int px(const QWidget* widget, int at96) {
  int dpi = 96;
  if (widget != nullptr) {
    dpi = widget->logicalDpiX();
  } else if (const QScreen* screen = QGuiApplication::primaryScreen()) {
    dpi = static_cast<int>(std::lround(screen->logicalDotsPerInchX()));
  }
  return std::max(at96 > 0 ? 1 : 0, static_cast<int>(std::lround(at96 * dpi / 96.0)));
}

QFont semiBold(QFont font) {
  font.setWeight(QFont::DemiBold);
  return font;
}

QFont caption(QFont font) {
  font.setWeight(QFont::DemiBold);
  constexpr double share = 0.88;
  if (font.pointSizeF() > 0) {
    font.setPointSizeF(font.pointSizeF() * share);
  } else {
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(font.pixelSize() * share))));
  }
  return font;
}

}  // namespace korvel::ui
