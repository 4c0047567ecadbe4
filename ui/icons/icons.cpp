#include "ui/icons/icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <algorithm>
#include <array>
#include <optional>

#include "ui/icons/line_drawing.h"
#include "ui/style/system_appearance.h"
#include "ui/style/theme.h"

// The macro must stand outside namespaces. It is needed because the resources are in a static library.
static void loadDrawings() {
  Q_INIT_RESOURCE(ui_icons);
}

namespace korvel::ui {
namespace {

constexpr std::array<IconFile, 41> files{{
    {IconName::Select, "select"},
    {IconName::Info, "info"},
    {IconName::Query, "query"},
    {IconName::Clear, "clear"},
    {IconName::SelectAll, "selectall"},
    {IconName::UnselectAll, "unselectall"},
    {IconName::Export, "export"},
    {IconName::Columns, "columns"},
    {IconName::SideTools, "sidetools"},
    {IconName::Print, "print"},
    {IconName::PageSetup, "pagesetup"},
    {IconName::DateRange, "daterange"},
    {IconName::ClearDate, "cleardate"},
    {IconName::Font, "font"},
    {IconName::Language, "language"},
    {IconName::About, "about"},
    {IconName::Exit, "exit"},
    {IconName::Open, "open"},
    {IconName::Save, "save"},
    {IconName::Fields, "fields"},
    {IconName::Copy, "copy"},
    {IconName::Server, "server"},
    {IconName::ZoomIn, "zoomin"},
    {IconName::ZoomOut, "zoomout"},
    {IconName::FitWidth, "fitwidth"},
    {IconName::FitPage, "fitpage"},
    {IconName::FirstPage, "firstpage"},
    {IconName::PreviousPage, "previouspage"},
    {IconName::NextPage, "nextpage"},
    {IconName::LastPage, "lastpage"},
    {IconName::PreviousYear, "previousyear"},
    {IconName::NextYear, "nextyear"},
    {IconName::PageMark, "pagemark"},
    {IconName::SortAscending, "sortascending"},
    {IconName::SortDescending, "sortdescending"},
    {IconName::Viewer, "viewer"},
    {IconName::PreviousHit, "previoushit"},
    {IconName::NextHit, "nexthit"},
    {IconName::Close, "close"},
    {IconName::FilterRows, "filterrows"},
    {IconName::More, "more"},
}};

const QPalette*& palettePainted() {
  static const QPalette* palette = nullptr;
  return palette;
}

QString fileOf(IconName name) {
  const auto* found =
      std::find_if(files.begin(), files.end(), [name](const IconFile& file) { return file.name == name; });
  return found == files.end()
             ? QString()
             : QStringLiteral(":/korvel/ui/svg/") + QLatin1String(found->file) + QStringLiteral(".svg");
}

QColor inkOf(IconTone tone, QIcon::Mode mode) {
  const QPalette* palette = IconPalette::current();
  const QPalette fallback = palette != nullptr ? QPalette() : QGuiApplication::palette();
  const Theme& theme = Theme::of(palette != nullptr ? *palette : fallback);
  if (mode == QIcon::Disabled) return theme.disabled;
  if (systemAppearance().highContrast) return mode == QIcon::Selected ? theme.onSelection : theme.text;
  if (tone == IconTone::Accent) return theme.accent;
  // The platform's own style does not fill buttons with the accent.
  if (tone == IconTone::OnFill) return systemAppearance().native ? theme.accent : theme.onFill;
  // ViewerStyle marks selected items by a tint and keeps the colour of the text; other styles invert it.
  if (mode == QIcon::Selected && palette == nullptr) return fallback.color(QPalette::HighlightedText);
  return theme.text;
}

/// Draws an icon in one colour. The size is in device pixels.
QPixmap drawn(IconName name, const QColor& ink, const QSize& size) {
  const QString key = QStringLiteral("korvel/%1/%2/%3x%4")
                          .arg(static_cast<int>(name))
                          .arg(ink.rgba(), 0, 16)
                          .arg(size.width())
                          .arg(size.height());
  QPixmap pixmap;
  if (QPixmapCache::find(key, &pixmap)) return pixmap;
  QFile file(fileOf(name));
  if (!file.open(QIODevice::ReadOnly)) return {};
  const std::optional<LineDrawing> drawing = LineDrawing::read(file.readAll());
  if (!drawing) return {};
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  const int side = std::min(size.width(), size.height());
  drawing->paint(painter, QRect((size.width() - side) / 2, (size.height() - side) / 2, side, side), ink);
  painter.end();
  pixmap = QPixmap::fromImage(image);
  QPixmapCache::insert(key, pixmap);
  return pixmap;
}

class CommandIcon : public QIconEngine {
 public:
  CommandIcon(IconName name, IconTone tone) : name_(name), tone_(tone) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State /*state*/) override {
    if (rect.isEmpty()) return;
    const qreal ratio = painter->device()->devicePixelRatio();
    QPixmap pixmap = drawn(name_, inkOf(tone_, mode), (QSizeF(rect.size()) * ratio).toSize());
    pixmap.setDevicePixelRatio(ratio);
    painter->drawPixmap(rect.topLeft(), pixmap);
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/) override {
    return size.isEmpty() ? QPixmap() : drawn(name_, inkOf(tone_, mode), size);
  }

  QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal /*scale*/) override {
    return pixmap(size, mode, state);  // the size is in device pixels already
  }

  QIconEngine* clone() const override { return new CommandIcon(name_, tone_); }
  QString key() const override { return QStringLiteral("KorvelCommandIcon"); }
  QString iconName() override {
    const QString file = fileOf(name_);
    return file.section(QLatin1Char('/'), -1).section(QLatin1Char('.'), 0, 0);
  }
  bool isNull() override { return false; }

 private:
  IconName name_;
  IconTone tone_;
};

}  // namespace

std::span<const IconFile> iconFiles() {
  return files;
}

QIcon icon(IconName name, IconTone tone) {
  loadDrawings();
  return QIcon(new CommandIcon(name, tone));
}

IconPalette::IconPalette(const QPalette& palette) : outer_(palettePainted()) {
  palettePainted() = &palette;
}
IconPalette::~IconPalette() {
  palettePainted() = outer_;
}
const QPalette* IconPalette::current() {
  return palettePainted();
}

}  // namespace korvel::ui
