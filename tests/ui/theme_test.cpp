#include <gmock/gmock.h>

#include <QFont>
#include <QGuiApplication>
#include <QStyle>
#include <QStyleFactory>
#include <memory>

#include "tests/ui/painted.h"

namespace korvel::ui {
namespace {

struct Pair {
  const char* name;
  QColor Theme::*ink;
  QColor Theme::*ground;
  double least;
};

constexpr double text = 4.5;
constexpr double mark = 3.0;

const Pair pairs[] = {
    {"text on window", &Theme::text, &Theme::window, text},
    {"text on surface", &Theme::text, &Theme::surface, text},
    {"text on header", &Theme::text, &Theme::header, text},
    {"text on alternate row", &Theme::text, &Theme::alternateRow, text},
    {"text on selection", &Theme::text, &Theme::selection, text},
    {"text on hover", &Theme::text, &Theme::hover, text},
    {"text on pressed", &Theme::text, &Theme::pressed, text},
    {"text on removed", &Theme::text, &Theme::removed, text},
    {"text on added", &Theme::text, &Theme::added, text},
    {"text on what is found", &Theme::text, &Theme::found, text},
    {"text on the current hit", &Theme::text, &Theme::foundCurrent, text},
    {"muted on window", &Theme::muted, &Theme::window, text},
    {"muted on surface", &Theme::muted, &Theme::surface, text},
    {"muted on header", &Theme::muted, &Theme::header, text},
    {"muted on alternate row", &Theme::muted, &Theme::alternateRow, text},
    {"text on selected row", &Theme::onSelection, &Theme::selection, text},
    {"on fill", &Theme::onFill, &Theme::fill, text},
    {"on fill under the pointer", &Theme::onFill, &Theme::fillHover, text},
    {"on fill held down", &Theme::onFill, &Theme::fillPressed, text},
    {"on accent", &Theme::onAccent, &Theme::accent, text},
    {"disabled on window", &Theme::disabled, &Theme::window, mark},
    {"disabled on surface", &Theme::disabled, &Theme::surface, mark},
    {"disabled on hover", &Theme::disabled, &Theme::hover, mark},
    {"disabled on header", &Theme::disabled, &Theme::header, mark},
    {"disabled on selection", &Theme::disabled, &Theme::selection, mark},
    {"tick of a disabled box", &Theme::surface, &Theme::disabled, mark},
    {"accent on window", &Theme::accent, &Theme::window, mark},
    {"accent on surface", &Theme::accent, &Theme::surface, mark},
    {"accent on header", &Theme::accent, &Theme::header, mark},
    {"accent on selection", &Theme::accent, &Theme::selection, mark},
    {"question mark of a review", &Theme::accent, &Theme::alternateRow, mark},
    {"tick of a review", &Theme::addedLine, &Theme::surface, mark},
    {"tick of a review on alternate row", &Theme::addedLine, &Theme::alternateRow, mark},
    {"changed mark of a review", &Theme::removedLine, &Theme::surface, mark},
    {"changed mark of a review on alternate row", &Theme::removedLine, &Theme::alternateRow, mark},
    {"line under removed", &Theme::removedLine, &Theme::removed, mark},
    {"line under added", &Theme::addedLine, &Theme::added, mark},
    {"empty box on surface", &Theme::control, &Theme::surface, mark},
    {"empty box on window", &Theme::control, &Theme::window, mark},
    {"empty box on selection", &Theme::control, &Theme::selection, mark},
};

void expectReadable(const QPalette& palette, const std::string& name) {
  const Theme& theme = Theme::of(palette);
  for (const Pair& pair : pairs) {
    EXPECT_GE(contrastRatio(theme.*pair.ink, theme.*pair.ground), pair.least)
        << name << ": " << pair.name << ", " << (theme.*pair.ink).name().toStdString() << " on "
        << (theme.*pair.ground).name().toStdString();
  }
}

TEST(Contrast, IsThatOfTheGuidelines) {
  EXPECT_DOUBLE_EQ(contrastRatio(Qt::black, Qt::white), 21.0);
  EXPECT_DOUBLE_EQ(contrastRatio(Qt::white, Qt::black), 21.0);
  EXPECT_DOUBLE_EQ(contrastRatio(Qt::red, Qt::red), 1.0);
  EXPECT_NEAR(contrastRatio(QColor("#767676"), Qt::white), 4.54, 0.01);
  EXPECT_NEAR(contrastRatio(QColor("#777777"), Qt::white), 4.48, 0.01);
}

TEST(ThemeTest, IsReadableInOurPalettes) {
  for (const SchemeCase& scheme : schemes) expectReadable(scheme.palette({}), scheme.name);
}

TEST(ThemeTest, IsReadableWithAnyAccentOfThePlatform) {
  for (const SchemeCase& scheme : schemes) {
    for (const char* accent : {"#e95420", "#ffd700", "#00ff00", "#3daee9", "#7b1fa2", "#102040", "#ff0000"}) {
      expectReadable(scheme.palette(QColor(accent)), std::string(scheme.name) + " with " + accent);
    }
  }
}

TEST(ThemeTest, IsReadableInTheToolkitsPaletteAndInHostsOfStrongOrWeakContrast) {
  const std::unique_ptr<QStyle> fusion(QStyleFactory::create("Fusion"));
  expectReadable(fusion->standardPalette(), "toolkit");
  QPalette highContrast(Qt::white, Qt::black, Qt::white, Qt::black, Qt::gray, Qt::white, Qt::black);
  expectReadable(highContrast, "black");
  QPalette weak = lightPalette();
  weak.setColor(QPalette::WindowText, QColor("#999999"));
  expectReadable(weak, "weak text");
  QPalette grey = darkPalette();
  grey.setColor(QPalette::Window, QColor("#505050"));
  grey.setColor(QPalette::Base, QColor("#484848"));
  expectReadable(grey, "grey");
}

TEST(ThemeTest, HasTheColoursOfTheDrawing) {
  const Theme& light = Theme::of(lightPalette());
  EXPECT_FALSE(light.dark);
  EXPECT_EQ(light.accent, QColor("#1f6feb"));
  EXPECT_EQ(light.fill, QColor("#1f6feb"));
  EXPECT_EQ(light.window, QColor("#f5f6f8"));
  EXPECT_EQ(light.surface, QColor(Qt::white));
  const Theme& dark = Theme::of(darkPalette());
  EXPECT_TRUE(dark.dark);
  EXPECT_EQ(dark.accent, QColor("#6ea8fe"));
  EXPECT_EQ(dark.fill, QColor("#1f6feb"));
  EXPECT_EQ(dark.surface, QColor("#262b33"));
}

TEST(ThemeTest, TakesThePlatformsHighlightOnlyWhereItIsOne) {
  QPalette palette = lightPalette();
  for (const char* nobodys : {"#308cc6", "#000080", "#1f6feb", "#6ea8fe", "#808080", "#000000", "#ffffff"}) {
    palette.setColor(QPalette::Highlight, QColor(nobodys));
    EXPECT_FALSE(chosenHighlight(palette).isValid()) << nobodys;
    EXPECT_EQ(Theme::of(palette).accent, QColor("#1f6feb")) << nobodys;
  }
  palette.setColor(QPalette::Highlight, QColor("#c2185b"));
  EXPECT_EQ(chosenHighlight(palette), QColor("#c2185b"));
  EXPECT_EQ(Theme::of(palette).accent, QColor("#c2185b"));
}

TEST(ThemeTest, DistinguishesPalettesAfterManyOthers) {
  const QPalette first = lightPalette();
  EXPECT_FALSE(Theme::of(first).dark);
  for (int i = 0; i < 100; ++i) {
    QPalette other = darkPalette();
    other.setColor(QPalette::Window, QColor(i, i, i));
    EXPECT_EQ(Theme::of(other).window, QColor(i, i, i));
  }
  EXPECT_FALSE(Theme::of(first).dark);
}

TEST(Scheme, IsWhatTheEnvironmentAsksFor) {
  const QByteArray before = qgetenv("KORVEL_THEME");
  const auto asked = [](const char* value) {
    qputenv("KORVEL_THEME", value);
    return requestedScheme();
  };
  EXPECT_EQ(asked("dark"), Scheme::Dark);
  EXPECT_EQ(asked("Light"), Scheme::Light);
  EXPECT_EQ(asked(" DARK "), Scheme::Dark);
  EXPECT_EQ(asked("Native"), Scheme::Native);
  EXPECT_EQ(asked("purple"), Scheme::System);
  EXPECT_EQ(asked(""), Scheme::System);
  qunsetenv("KORVEL_THEME");
  EXPECT_EQ(requestedScheme(), Scheme::System);
  if (!before.isNull()) qputenv("KORVEL_THEME", before);
}

TEST(Lengths, ScaleWithTheScreenAndNeverVanish) {
  QWidget widget;
  EXPECT_EQ(px(&widget, 0), 0);
  EXPECT_EQ(px(&widget, 8), qRound(8 * widget.logicalDpiX() / 96.0));
  EXPECT_GE(px(&widget, 1), 1);
  EXPECT_EQ(px(nullptr, 96), px(&widget, 96));
}

TEST(Fonts, AreSemiBoldAndCaptionsSmaller) {
  QFont points;
  points.setPointSizeF(10);
  EXPECT_EQ(semiBold(points).weight(), QFont::DemiBold);
  EXPECT_DOUBLE_EQ(semiBold(points).pointSizeF(), 10);
  EXPECT_LT(caption(points).pointSizeF(), 10);
  QFont pixels;
  pixels.setPixelSize(20);
  EXPECT_EQ(caption(pixels).pixelSize(), 18);
}

}  // namespace
}  // namespace korvel::ui
