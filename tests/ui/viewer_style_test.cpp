#include <gmock/gmock.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QProgressBar>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyleOptionButton>
#include <QTabBar>
#include <QToolBar>
#include <QVBoxLayout>

#include "tests/ui/painted.h"
#include "ui/buttons.h"
#include "ui/card_frame.h"
#include "ui/dialogs.h"
#include "ui/page_strip.h"
#include "ui/style/system_appearance.h"
#include "ui/style/viewer_style.h"

namespace korvel::ui {
namespace {

/// A window in our style and one colour scheme.
struct Window {
  explicit Window(const QPalette& palette = lightPalette()) {
    applyStyle(widget);
    widget.setPalette(palette);
    widget.resize(300, 200);
  }
  void show() {
    widget.show();
    QApplication::processEvents();
  }

  QWidget widget;
};

TEST(Look, ReachesTheSubtreeAndNothingElse) {
  QWidget host;
  auto* neighbour = new QPushButton(&host);
  auto* root = new QWidget(&host);
  auto* before = new QPushButton(root);
  applyStyle(*root);
  auto* after = new QPushButton(root);
  auto* deep = new QLineEdit(new QWidget(root));
  auto* dialog = new QDialog(root);
  auto* inDialog = new QCheckBox(dialog);
  for (QWidget* inside : {static_cast<QWidget*>(before), static_cast<QWidget*>(after), static_cast<QWidget*>(deep),
                          static_cast<QWidget*>(inDialog)}) {
    EXPECT_EQ(inside->style(), root->style());
  }
  EXPECT_NE(root->style(), QApplication::style());
  EXPECT_EQ(neighbour->style(), QApplication::style());
  EXPECT_EQ(host.style(), QApplication::style());
  EXPECT_EQ(QApplication::style()->parent(), qApp) << "the application's style is untouched";
}

TEST(Look, ReachesWhatIsMovedIntoTheSubtreeWithAllItHolds) {
  QWidget root;
  applyStyle(root);
  auto* moved = new QWidget;
  auto* held = new QPushButton(moved);
  EXPECT_NE(held->style(), root.style());
  moved->setParent(&root);
  EXPECT_EQ(held->style(), root.style());
}

TEST(Look, OutlivesTheControlsThatUseIt) {
  QPointer<QStyle> style;
  {
    QWidget root;
    applyStyle(root);
    new QPushButton(&root);
    style = root.style();
  }
  ASSERT_FALSE(style.isNull());
  QWidget next;
  applyStyle(next);
  EXPECT_EQ(next.style(), style.data());
}

TEST(Look, FollowsTheSchemeAtRunTime) {
  Window window;
  auto* box = new QCheckBox(&window.widget);
  box->setChecked(true);
  window.show();
  EXPECT_GT(count(painted(*box), Theme::of(lightPalette()).accent), 20);
  window.widget.setPalette(darkPalette());
  EXPECT_EQ(count(painted(*box), Theme::of(lightPalette()).accent), 0);
  EXPECT_GT(count(painted(*box), Theme::of(darkPalette()).accent), 20);
}

TEST(LookCheckBox, IsFilledWhenTickedAndQuietWhenDisabled) {
  for (const SchemeCase& scheme : schemes) {
    Window window(scheme.palette({}));
    const Theme& theme = Theme::of(window.widget);
    auto* box = new QCheckBox(&window.widget);
    box->setTristate(true);
    window.show();
    box->setCheckState(Qt::Unchecked);
    EXPECT_EQ(count(painted(*box), theme.accent), 0) << scheme.name;
    box->setCheckState(Qt::PartiallyChecked);
    const int partly = count(painted(*box), theme.accent);
    EXPECT_GT(partly, 20) << scheme.name;
    box->setCheckState(Qt::Checked);
    EXPECT_GT(count(painted(*box), theme.accent), 20) << scheme.name;
    box->setEnabled(false);
    EXPECT_EQ(count(painted(*box), theme.accent), 0) << scheme.name;
    EXPECT_GT(count(painted(*box), theme.disabled), 20) << scheme.name;
  }
}

TEST(LookButtons, OnlyThePrimaryIsFilled) {
  for (const SchemeCase& scheme : schemes) {
    Window window(scheme.palette({}));
    const Theme& theme = Theme::of(window.widget);
    auto* primary = new PrimaryButton(IconName::Query, QString(), &window.widget);
    auto* secondary = new SecondaryButton(IconName::DateRange, "Date Range", &window.widget);
    primary->setGeometry(50, 60, 200, 30);
    secondary->setGeometry(50, 100, 200, 30);
    window.show();
    EXPECT_GT(count(painted(*primary), theme.fill), 200 * 30 * 8 / 10) << scheme.name;
    EXPECT_GT(count(painted(*primary), theme.onFill), 10) << scheme.name;
    EXPECT_EQ(count(painted(*secondary), theme.fill), 0) << scheme.name;
    EXPECT_GT(count(painted(*secondary), theme.border), 200) << scheme.name;
    primary->setEnabled(false);
    EXPECT_EQ(count(painted(*primary), theme.fill), 0) << scheme.name;
    EXPECT_GT(count(painted(*primary), theme.disabled), 5) << scheme.name;
  }
}

TEST(LookButtons, TheDefaultOfADialogIsFilled) {
  QDialog dialog;
  applyStyle(dialog);
  dialog.setPalette(lightPalette());
  styleDialog(dialog);
  auto* row = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  addButtons(dialog, row);
  row->button(QDialogButtonBox::Ok)->setDefault(true);
  dialog.show();
  QApplication::processEvents();
  const Theme& theme = Theme::of(dialog);
  EXPECT_GT(count(painted(*row->button(QDialogButtonBox::Ok)), theme.fill), 500);
  EXPECT_EQ(count(painted(*row->button(QDialogButtonBox::Cancel)), theme.fill), 0);
  EXPECT_EQ(row->mapTo(&dialog, row->rect().bottomRight()).x(), dialog.width() - 1 - px(&dialog, space::dialog));
  EXPECT_LT(row->button(QDialogButtonBox::Ok)->x(), row->button(QDialogButtonBox::Cancel)->x());
}

TEST(LookButtons, KeyboardFocusIsSeen) {
  Window window;
  auto* first = new SecondaryButton("One", &window.widget);
  auto* second = new IconButton(IconName::Info, &window.widget);
  first->setGeometry(0, 0, 120, 30);
  second->setGeometry(0, 40, 30, 30);
  window.show();
  window.widget.activateWindow();
  const Theme& theme = Theme::of(window.widget);
  const auto ring = [&](QWidget& widget) {
    QStyleOptionButton option;
    option.initFrom(&widget);
    option.rect = widget.rect();
    option.state = QStyle::State_Enabled | QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(theme.surface);
    QPainter painter(&image);
    const auto element =
        qobject_cast<QToolButton*>(&widget) ? QStyle::PE_PanelButtonTool : QStyle::PE_PanelButtonCommand;
    widget.style()->drawPrimitive(element, &option, &painter, &widget);
    painter.end();
    const int focused = count(image, theme.accent);
    image.fill(theme.surface);
    option.state = QStyle::State_Enabled;
    QPainter again(&image);
    widget.style()->drawPrimitive(element, &option, &again, &widget);
    again.end();
    EXPECT_EQ(count(image, theme.accent), 0);
    return focused;
  };
  EXPECT_GT(ring(*first), 2 * 120);
  EXPECT_GT(ring(*second), 2 * 30);
}

TEST(IconRowTest, ItsButtonsAreEqual) {
  Window window;
  auto* row = new IconRow(&window.widget);
  QList<IconButton*> buttons;
  for (const auto name : {IconName::Select, IconName::Info, IconName::Clear, IconName::SelectAll, IconName::UnselectAll,
                          IconName::Export, IconName::Print}) {
    buttons.append(new IconButton(name));
    row->add(buttons.last());
  }
  row->setGeometry(0, 0, 214, 30);
  window.show();
  for (const IconButton* button : buttons) {
    EXPECT_NEAR(button->width(), buttons.first()->width(), 1);
    EXPECT_EQ(button->height(), px(&window.widget, space::button));
    EXPECT_NE(button->focusPolicy(), Qt::NoFocus);
  }
  EXPECT_LE(buttons.last()->geometry().right(), 214);
}

TEST(IconButtonTest, IsNamedByItsTooltip) {
  IconButton button(IconName::Info);
  button.setToolTip("Database Information");
  EXPECT_EQ(button.accessibleName(), "Database Information");
  button.setToolTip("Datenbankinformation");
  EXPECT_EQ(button.accessibleName(), "Datenbankinformation");
}

TEST(TextRowTest, StandsInOneRowOnlyWhereEveryTextFits) {
  Window window;
  auto* row = new TextRow(&window.widget);
  auto* one = new SecondaryButton(IconName::DateRange, "Short");
  auto* two = new SecondaryButton(IconName::ClearDate, "Text");
  row->add(one);
  row->add(two);
  auto* column = new QVBoxLayout(&window.widget);
  column->addWidget(row);
  column->addStretch();
  window.widget.resize(230, 200);
  window.show();
  EXPECT_EQ(one->y(), two->y());
  EXPECT_NEAR(one->width(), two->width(), 1);

  two->setText("Zeitbereich zur\u00fccksetzen");
  QApplication::processEvents();
  EXPECT_GT(two->y(), one->geometry().bottom());
  EXPECT_GE(two->width(), two->sizeHint().width() - 2 * px(two, 4)) << "nothing of the text is cut";

  two->setText("Text");
  QApplication::processEvents();
  EXPECT_EQ(one->y(), two->y());
}

TEST(TextRowTest, CutsNoTextOfAnyLengthThatStandsInOneRow) {
  Window window;
  auto* row = new TextRow(&window.widget);
  auto* one = new SecondaryButton(IconName::DateRange, "Short");
  auto* two = new SecondaryButton(IconName::ClearDate, "i");
  row->add(one);
  row->add(two);
  auto* column = new QVBoxLayout(&window.widget);
  column->setContentsMargins({});
  column->addWidget(row);
  column->addStretch();
  window.widget.resize(214, 200);
  window.show();
  int inOneRow = 0;
  for (; static_cast<QBoxLayout*>(row->layout())->direction() == QBoxLayout::LeftToRight; ++inOneRow) {
    QStyleOptionButton option;
    option.initFrom(two);
    option.icon = two->icon();
    option.text = two->text();
    const int contents = two->style()->subElementRect(QStyle::SE_PushButtonContents, &option, two).width();
    const int textRoom = contents - 2 * px(two, 4) - two->iconSize().width() - px(two, 4);
    EXPECT_EQ(two->fontMetrics().elidedText(two->text(), Qt::ElideRight, textRoom), two->text());
    two->setText(two->text() + 'i');
    QApplication::processEvents();
  }
  EXPECT_GT(inOneRow, 5);
}

TEST(CardFrameTest, KeepsEightPixelsAndItsCaptionFree) {
  Window window;
  auto* card = new CardFrame("Filter Criteria", &window.widget);
  auto* column = new QVBoxLayout(card);
  auto* content = new QWidget;
  column->addWidget(content);
  card->setGeometry(0, 0, 232, 150);
  window.show();
  const int side = px(card, space::inside) + px(card, 1);
  EXPECT_EQ(content->x(), side);
  EXPECT_EQ(card->width() - content->geometry().right() - 1, side);
  EXPECT_EQ(card->height() - content->geometry().bottom() - 1, side);
  EXPECT_GE(content->y(), side + QFontMetrics(caption(card->font())).height());
  const Theme& theme = Theme::of(*card);
  const QImage image = painted(*card);
  EXPECT_EQ(image.pixelColor(116, 149), theme.border);
  EXPECT_EQ(image.pixelColor(116, 140), theme.surface);
  EXPECT_NE(image.pixelColor(0, 0), theme.surface) << "round corners";
  EXPECT_GT(count(image, theme.muted, QRect(0, 0, 232, content->y())), 10) << "a caption in grey";
}

TEST(PageStripTest, CurrentPageIsMarkedAndNothingMovesWhenItChanges) {
  for (const SchemeCase& scheme : schemes) {
    Window window(scheme.palette({}));
    auto* pages = new PageStrip(&window.widget);
    for (const char* caption : {"ALL Audits", "Runtime"}) pages->addTab(new QWidget, caption);
    pages->setGeometry(0, 0, 300, 150);
    window.show();
    const Theme& theme = Theme::of(*pages);
    const QRect first = pages->tabBar()->tabRect(0);
    const QRect second = pages->tabBar()->tabRect(1);
    QImage image = painted(*pages);
    EXPECT_GT(count(image, theme.accent, first), 20) << scheme.name << ": the dot";
    EXPECT_EQ(count(image, theme.accent, second), 0) << scheme.name;
    EXPECT_EQ(image.pixelColor(first.center().x(), first.bottom()), theme.surface) << "joined to its page";
    EXPECT_EQ(image.pixelColor(second.center().x(), second.bottom()), theme.border) << "the base line";

    pages->setCurrentIndex(1);
    image = painted(*pages);
    EXPECT_EQ(count(image, theme.accent, first), 0) << scheme.name;
    EXPECT_GT(count(image, theme.accent, second), 20) << scheme.name;
    EXPECT_EQ(pages->tabBar()->tabRect(0), first);
    EXPECT_EQ(pages->tabBar()->tabRect(1), second);
  }
}

TEST(PageStripTest, ThePlatformsStyleMarksTheCurrentPageToo) {
  const SystemAppearanceOverride native({.native = true});
  QWidget window;
  applyStyle(window);
  auto* pages = new PageStrip(&window);
  for (const char* caption : {"ALL Audits", "Runtime", "Custom"}) pages->addTab(new QWidget, caption);
  pages->setGeometry(0, 0, 400, 150);
  window.resize(400, 150);
  window.show();
  ASSERT_EQ(qobject_cast<const ViewerStyle*>(pages->style()), nullptr);
  const QColor accent = Theme::of(QApplication::palette()).accent;
  std::vector<QRect> tabs;
  for (int page = 0; page < pages->count(); ++page) tabs.push_back(pages->tabBar()->tabRect(page));
  for (const int current : {0, 2, 1}) {
    pages->setCurrentIndex(current);
    const QImage image = painted(*pages);
    for (int page = 0; page < pages->count(); ++page) {
      const QRect tab = tabs.at(static_cast<std::size_t>(page));
      // A dot: a style that colours a tab's edge has other shapes.
      const int dot = count(image, accent, tab.adjusted(4, 4, -4, -4));
      if (page == current)
        EXPECT_GT(dot, 20) << page;
      else
        EXPECT_EQ(dot, 0) << page;
      EXPECT_EQ(pages->tabBar()->tabRect(page), tab) << "nothing moves when the page changes";
    }
  }
}

TEST(LookLabels, GreyTextFollowsTheSchemeByItself) {
  Window window;
  auto* label = new QLabel("17384 Records on current tab", &window.widget);
  setMuted(*label);
  label->setGeometry(0, 0, 280, 30);
  window.show();
  EXPECT_GT(count(painted(*label), Theme::of(lightPalette()).muted), 10);
  window.widget.setPalette(darkPalette());
  EXPECT_GT(count(painted(*label), Theme::of(darkPalette()).muted), 10);
  label->setEnabled(false);
  EXPECT_GT(count(painted(*label), Theme::of(darkPalette()).disabled), 10);
}

TEST(LookProgress, FillsItsShare) {
  Window window;
  auto* bar = new QProgressBar(&window.widget);
  bar->setTextVisible(false);
  bar->setGeometry(0, 0, 200, 20);
  bar->setValue(50);
  window.show();
  const Theme& theme = Theme::of(*bar);
  const QImage image = painted(*bar);
  EXPECT_EQ(image.pixelColor(50, 10), theme.fill);
  EXPECT_EQ(image.pixelColor(150, 10), theme.header);
  bar->setMaximum(0);  // busy, for an unknown time
  EXPECT_EQ(painted(*bar).pixelColor(100, 10), theme.fill);
}

TEST(LookScrollBar, HandleKeepsASizeToBeCaughtAndReachesBothEnds) {
  Window window;
  auto* bar = new QScrollBar(Qt::Vertical, &window.widget);
  bar->setGeometry(0, 0, 12, 200);
  bar->setRange(0, 10'000'000);
  bar->setPageStep(30);
  window.show();
  const auto handle = [bar] {
    QStyleOptionSlider option;
    option.initFrom(bar);
    option.orientation = Qt::Vertical;
    option.minimum = bar->minimum();
    option.maximum = bar->maximum();
    option.pageStep = bar->pageStep();
    option.sliderPosition = bar->sliderPosition();
    return bar->style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, bar);
  };
  EXPECT_GE(handle().height(), px(bar, 28));
  EXPECT_EQ(handle().top(), 0);
  bar->setValue(bar->maximum());
  EXPECT_EQ(handle().bottom(), 199);
}

TEST(LookSizes, LeaveRoomForLongCaptions) {
  Window window;
  auto* button = new QPushButton("Zur\u00fccksetzen aller Filterkriterien", &window.widget);
  auto* strip = new PageStrip(&window.widget);
  strip->addTab(new QWidget, "Dokumentenverwaltung und Freigaben");
  window.show();
  EXPECT_GE(button->sizeHint().width(), button->fontMetrics().horizontalAdvance(button->text()) + 2 * px(button, 8));
  EXPECT_GE(button->sizeHint().height(), px(button, 28));
  EXPECT_GE(strip->tabBar()->tabRect(0).width(),
            QFontMetrics(semiBold(strip->font())).horizontalAdvance(strip->tabText(0)) + px(strip, 30));
}

TEST(LookSizes, ToolBarIsFortyPixelsHigh) {
  Window window;
  auto* bar = new QToolBar(&window.widget);
  bar->addAction(icon(IconName::Select), "Select");
  bar->addSeparator();
  window.show();
  EXPECT_EQ(bar->sizeHint().height(), px(bar, space::toolBar));
}

TEST(LookMenu, SelectedItemIsATintAndATickIsInTheAccent) {
  Window window;
  QMenu menu(&window.widget);
  menu.setPalette(lightPalette());
  QAction* plain = menu.addAction(icon(IconName::Select), "Select Database");
  QAction* ticked = menu.addAction("Tools");
  ticked->setCheckable(true);
  ticked->setChecked(true);
  menu.ensurePolished();
  menu.resize(menu.sizeHint());
  menu.setActiveAction(plain);
  const Theme& theme = Theme::of(menu);
  const QImage image = painted(menu);
  EXPECT_GT(count(image, theme.selection, menu.actionGeometry(plain)), 500);
  EXPECT_EQ(count(image, theme.selection, menu.actionGeometry(ticked)), 0);
  EXPECT_GT(count(image, theme.accent, menu.actionGeometry(ticked)), 3);
}

}  // namespace
}  // namespace korvel::ui
