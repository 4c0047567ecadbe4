#include "ui/style/system_appearance.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QStandardItemModel>
#include <QStyleOptionViewItem>
#include <QVBoxLayout>

#include "tests/ui/painted.h"
#include "ui/card_frame.h"
#include "ui/icons/icons.h"
#include "ui/result_table.h"
#include "ui/style/palettes.h"
#include "ui/style/viewer_style.h"

namespace korvel::ui {
namespace {

/// Colours of a high contrast scheme: green on black, yellow selection.
QPalette strongPalette() {
  QPalette palette(Qt::green, Qt::black, Qt::green, Qt::black, Qt::gray, Qt::green, Qt::black);
  palette.setColor(QPalette::Highlight, Qt::yellow);
  palette.setColor(QPalette::HighlightedText, Qt::black);
  palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor("#a0ffa0"));
  return palette;
}

const SystemAppearance strongContrast{true, std::nullopt};

TEST(StrongContrast, KeepsThePalettesColoursWithoutAnyTint) {
  const SystemAppearanceOverride strong(strongContrast);
  const Theme& theme = Theme::of(strongPalette());
  EXPECT_EQ(theme.window, QColor(Qt::black));
  for (const QColor& ground : {theme.surface, theme.header, theme.alternateRow, theme.hover, theme.pressed})
    EXPECT_EQ(ground, QColor(Qt::black));
  for (const QColor& ink : {theme.text, theme.muted, theme.border, theme.control, theme.onFill})
    EXPECT_EQ(ink, QColor(Qt::green));
  EXPECT_EQ(theme.selection, QColor(Qt::yellow));
  EXPECT_EQ(theme.onSelection, QColor(Qt::black));
  EXPECT_EQ(theme.disabled, QColor("#a0ffa0"));
}

TEST(StrongContrast, IsForgottenWithTheScheme) {
  const QPalette palette = strongPalette();
  EXPECT_NE(Theme::of(palette).selection, QColor(Qt::yellow));
  {
    const SystemAppearanceOverride strong(strongContrast);
    EXPECT_EQ(Theme::of(palette).selection, QColor(Qt::yellow));
  }
  EXPECT_NE(Theme::of(palette).selection, QColor(Qt::yellow));
  EXPECT_EQ(Theme::of(palette).onSelection, Theme::of(palette).text);
}

TEST(StrongContrast, GivesIconsTheColourOfTextInEveryTone) {
  const SystemAppearanceOverride strong(strongContrast);
  const QPalette palette = strongPalette();
  const IconPalette painting(palette);
  for (const IconTone tone : {IconTone::Text, IconTone::Accent, IconTone::OnFill}) {
    const QImage image = icon(IconName::Query, tone).pixmap(QSize(32, 32), 1.0).toImage();
    EXPECT_GT(count(image.convertToFormat(QImage::Format_ARGB32), Qt::green), 50);
  }
}

TEST(StrongContrast, LeavesWidgetsThePlatformsStyle) {
  const SystemAppearanceOverride strong(strongContrast);
  QWidget root;
  applyStyle(root);
  auto* field = new QLineEdit(&root);
  auto* dialog = new QDialog(&root);
  auto* button = new QPushButton(dialog);
  for (const QWidget* widget : {&root, static_cast<QWidget*>(field), static_cast<QWidget*>(button)})
    EXPECT_EQ(widget->style(), QApplication::style());
}

TEST(NativeLook, LeavesThePlatformsStyleAndKeepsTheColoursOfThePalette) {
  const QPalette palette = lightPalette();
  const QColor tint = Theme::of(palette).header;
  const SystemAppearanceOverride native({.native = true});
  QWidget root;
  applyStyle(root);
  EXPECT_EQ((new QPushButton(&root))->style(), QApplication::style());
  EXPECT_EQ(Theme::of(palette).header, tint);
}

TEST(NativeLook, KeepsAFramesContentsOffItsBorder) {
  for (const bool native : {true, false}) {
    const SystemAppearanceOverride look({.native = native});
    QWidget root;
    applyStyle(root);
    auto* frame = new CardFrame(QStringLiteral("Frame"), &root);
    auto* layout = new QVBoxLayout(frame);
    frame->ensurePolished();
    EXPECT_EQ(layout->contentsMargins().isNull(), !native);
  }
}

TEST(NativeLook, GivesTheIconOfTheMainButtonAColourThatIsSeenOnPlainButtons) {
  const QPalette palette = lightPalette();
  const IconPalette painting(palette);
  const auto accent = [&] {
    const QImage image = icon(IconName::Query, IconTone::OnFill).pixmap(QSize(32, 32), 1.0).toImage();
    return count(image.convertToFormat(QImage::Format_ARGB32), Theme::of(palette).accent);
  };
  EXPECT_EQ(accent(), 0);
  const SystemAppearanceOverride native({.native = true});
  EXPECT_GT(accent(), 50);
}

TEST(StrongContrast, ComesAndGoesWithTheColoursOfTheSystem) {
  QWidget root;
  applyStyle(root);
  auto* button = new QPushButton(new QWidget(&root));
  QStyle* const ours = button->style();
  EXPECT_NE(ours, QApplication::style());
  {
    const SystemAppearanceOverride strong(strongContrast);
    root.setPalette(strongPalette());
    EXPECT_EQ(button->style(), QApplication::style());
    EXPECT_EQ((new QPushButton(&root))->style(), QApplication::style());
  }
  root.setPalette(lightPalette());
  EXPECT_EQ(button->style(), ours);
  EXPECT_EQ(root.style(), ours);
}

TEST(StrongContrast, InvertsASelectedRow) {
  const SystemAppearanceOverride strong(strongContrast);
  RowDelegate delegate;
  QStandardItemModel model(1, 1);
  model.setItem(0, 0, new QStandardItem(QStringLiteral("HHHHHHHH")));
  QImage image(200, 30, QImage::Format_ARGB32);
  image.fill(Qt::black);
  QPainter painter(&image);
  QStyleOptionViewItem option;
  option.palette = strongPalette();
  option.rect = image.rect();
  option.state = QStyle::State_Enabled | QStyle::State_Selected;
  delegate.paint(&painter, option, model.index(0, 0));
  painter.end();
  EXPECT_GT(count(image, Qt::yellow), 4000);
  int dark = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) dark += qGray(image.pixel(x, y)) < 128 ? 1 : 0;
  EXPECT_GT(dark, 20);
}

/// The application's palette that is set, and the one before.
class PreferredPalette : public ::testing::Test {
 protected:
  PreferredPalette() : before_(QApplication::palette()) { qunsetenv("KORVEL_THEME"); }
  ~PreferredPalette() override {
    for (QObject* child : qApp->children())
      if (!known_.contains(child)) delete child;
    QApplication::setPalette(before_);
    if (!theme_.isNull()) qputenv("KORVEL_THEME", theme_);
    refreshSystemAppearance();
  }

 private:
  QByteArray theme_ = qgetenv("KORVEL_THEME");
  QObjectList known_ = qApp->children();
  QPalette before_;
};

TEST_F(PreferredPalette, IsDarkOrLightAsTheSystemSays) {
  for (const bool dark : {true, false}) {
    const SystemAppearanceOverride look({false, dark});
    applyPreferredPalette(*qApp);
    EXPECT_EQ(isDark(QApplication::palette()), dark);
  }
}

TEST_F(PreferredPalette, IsTheSystemsOwnInStrongContrast) {
  const SystemAppearanceOverride ours({});
  const QPalette systems = QApplication::palette();
  applyPreferredPalette(*qApp);
  EXPECT_NE(QApplication::palette(), systems);
  const SystemAppearanceOverride strong(strongContrast);
  QWidget window;
  QEvent changed(QEvent::ThemeChange);
  QApplication::sendEvent(&window, &changed);
  EXPECT_EQ(QApplication::palette(), systems);
}

}  // namespace
}  // namespace korvel::ui
