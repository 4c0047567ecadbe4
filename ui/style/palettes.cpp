#include "ui/style/palettes.h"

#include <QApplication>
#include <QEvent>
#include <QStyle>
#include <QStyleFactory>
#include <array>
#include <memory>

#include "ui/style/system_appearance.h"
#include "ui/style/theme.h"

namespace korvel::ui {
namespace {

struct Shades {
  QRgb window, surface, alternate, text, muted, disabled, border, accent;
};
constexpr Shades lightShades{0xfff5f6f8, 0xffffffff, 0xfff8f9fb, 0xff1c2430,
                             0xff5b6573, 0xff80899a, 0xffd5d9e0, 0xff1f6feb};
constexpr Shades darkShades{0xff1e2228, 0xff262b33, 0xff2a3038, 0xffe6e9ee,
                            0xff9aa4b2, 0xff7c8695, 0xff3a414c, 0xff6ea8fe};

QPalette fromShades(const Shades& shades, const QColor& accent) {
  QPalette palette;
  const auto all = [&palette](QPalette::ColorRole role, const QColor& color) { palette.setColor(role, color); };
  const QColor window(shades.window);
  const QColor surface(shades.surface);
  const QColor text(shades.text);
  const QColor border(shades.border);
  const QColor highlight = accent.isValid() ? accent : QColor(shades.accent);
  all(QPalette::Window, window);
  all(QPalette::Base, surface);
  all(QPalette::AlternateBase, QColor(shades.alternate));
  all(QPalette::Button, surface);
  all(QPalette::ToolTipBase, surface);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
    all(role, text);
  all(QPalette::BrightText, Qt::white);
  all(QPalette::PlaceholderText, QColor(shades.muted));
  all(QPalette::Highlight, highlight);
  const QColor ink(0x12, 0x18, 0x22);
  all(QPalette::HighlightedText,
      contrastRatio(Qt::white, highlight) >= contrastRatio(ink, highlight) ? QColor(Qt::white) : ink);
  all(QPalette::Link, highlight);
  all(QPalette::LinkVisited, highlight);
  all(QPalette::Light, mixed(surface, Qt::white, 0.1));
  all(QPalette::Midlight, mixed(surface, border, 0.5));
  all(QPalette::Mid, border);
  all(QPalette::Dark, mixed(border, text, 0.3));
  all(QPalette::Shadow, mixed(border, Qt::black, 0.6));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(shades.disabled));
  }
  return palette;
}

/// The default highlight colours of the toolkit and of platforms without one of their own.
constexpr std::array<QRgb, 5> toolkitDefaults{0xff308cc6, 0xff000080, 0xff0078d7, lightShades.accent,
                                              darkShades.accent};

/// Applies the palette, and applies it again when the system's appearance changes. Exists as long as the application.
class PaletteKeeper : public QObject {
 public:
  explicit PaletteKeeper(QApplication& application)
      : QObject(&application), application_(application), system_(application.palette()) {
    application.installEventFilter(this);
    apply();
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    // Windows get ThemeChange after the platform's theme has changed; only then the fallback style knows the new one.
    if (event->type() == QEvent::ThemeChange && !applying_) {
      refreshSystemAppearance();
      apply();
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  void apply() {
    applying_ = true;
    if (systemAppearance().keepsPlatform()) {
      // An empty palette restores the system's.
      if (ours_) QApplication::setPalette(QPalette());
      ours_ = false;
    } else if (const QPalette palette = wanted(); palette != application_.palette()) {
      QApplication::setPalette(palette);
      ours_ = true;
    }
    applying_ = false;
  }

  [[nodiscard]] QPalette wanted() const {
    const std::unique_ptr<QStyle> fallback(QStyleFactory::create(QStringLiteral("Fusion")));
    const Scheme scheme = requestedScheme();
    const bool systemDark =
        systemAppearance().dark.value_or(isDark(system_) || (fallback && isDark(fallback->standardPalette())));
    const bool dark = scheme == Scheme::Dark || (scheme == Scheme::System && systemDark);
    const QColor accent = chosenHighlight(system_);
    return dark ? darkPalette(accent) : lightPalette(accent);
  }

  QApplication& application_;
  QPalette system_;
  bool ours_ = false;
  bool applying_ = false;
};

}  // namespace

QPalette lightPalette(const QColor& accent) {
  return fromShades(lightShades, accent);
}
QPalette darkPalette(const QColor& accent) {
  return fromShades(darkShades, accent);
}

bool isDark(const QPalette& palette) {
  return palette.color(QPalette::Active, QPalette::Window).lightness() < 128;
}

QColor chosenHighlight(const QPalette& palette) {
  const QColor highlight = palette.color(QPalette::Active, QPalette::Highlight);
  for (const QRgb fallback : toolkitDefaults) {
    if (highlight.rgb() == fallback) return {};
  }
  constexpr int grey = 60;  // below this saturation (of 255) a colour is grey
  if (highlight.alpha() == 0 || highlight.hsvSaturation() < grey || highlight.value() < grey) return {};
  return highlight;
}

Scheme requestedScheme() {
  const QByteArray wish = qgetenv("KORVEL_THEME").trimmed().toLower();
  if (wish == "light") return Scheme::Light;
  if (wish == "dark") return Scheme::Dark;
  if (wish == "native") return Scheme::Native;
  return Scheme::System;
}

void applyPreferredPalette(QApplication& application) {
  new PaletteKeeper(application);  // owned by the application
}

}  // namespace korvel::ui
