#include <QApplication>
#include <QFontInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTabBar>
#include <QTextDocument>
#include <QVBoxLayout>

#include "control/elided_label.h"
#include "control/status_panels.h"
#include "tests/control/viewer_fixture.h"
#include "ui/result_table.h"

namespace korvel::test {
namespace {

using Surface = ViewerTest;

QRect inViewer(const QWidget* element, const AuditViewer& viewer) {
  return {element->mapTo(&viewer, QPoint(0, 0)), element->size()};
}

int pixels(const QWidget& widget, int twips) {
  return qRound(double(twips) * widget.logicalDpiX() / 1440);
}

/// The visible text of a tooltip.
QString textOfToolTip(const QString& toolTip) {
  if (!Qt::mightBeRichText(toolTip)) return toolTip;
  QTextDocument shown;
  shown.setHtml(toolTip);
  return shown.toPlainText();
}

TEST_F(Surface, TestsAreDrawnInTheFontOfTheFontPackage) {
  // Without fonts every letter is a box, and tests of sizes prove nothing.
  EXPECT_EQ(QFontInfo(QApplication::font()).family(), "DejaVu Sans");
}

TEST_F(Surface, ElementsLieWhereTheResizeRoutinePutsThem) {
  const auto viewer = shownViewer();
  const auto* tabs = element(*viewer, "SSTab1");
  const auto* status = element(*viewer, "StatusBar1");
  for (const QSize size : {QSize(1280, 800), QSize(1000, 600), QSize(1601, 903)}) {
    viewer->resize(size);
    EXPECT_EQ(tabs->x(), pixels(*viewer, 3720));
    EXPECT_NEAR(tabs->width(), size.width() - element(*viewer, "frameTools")->width() - pixels(*viewer, 100), 1);
    const int bars = element(*viewer, "SmartMenu")->height() + element(*viewer, "SmartToolbar")->height();
    EXPECT_NEAR(tabs->height(), size.height() - status->height() - pixels(*viewer, 150) - bars, 1);
    EXPECT_EQ(status->geometry(), QRect(0, size.height() - status->height(), size.width(), status->height()));
    for (int i = 0; i < 5; ++i) {
      EXPECT_NEAR(list(*viewer, i)->width(), tabs->width() - pixels(*viewer, 250), 1) << i;
      EXPECT_NEAR(list(*viewer, i)->height(), tabs->height() - pixels(*viewer, 600), 1) << i;
    }
  }
}

TEST_F(Surface, TheStripsFramesAreAsWideAsTheStripAndTheirContentsLieInside) {
  const auto viewer = shownViewer();
  const int inset = pixels(*viewer, 120);
  const std::pair<const char*, const char*> contents[] = {{"frameFilter", "tvTreeView"}, {"frameTools", "btQuery"}};
  for (const auto& [frame, content] : contents) {
    const QRect whole = element(*viewer, frame)->geometry();
    EXPECT_EQ(whole.left(), 0) << frame;
    EXPECT_EQ(whole.right() + 1, element(*viewer, "SSTab1")->x()) << frame;
    EXPECT_GT(inViewer(element(*viewer, content), *viewer).left(), inset) << frame;
    EXPECT_LT(inViewer(element(*viewer, content), *viewer).right(), whole.right() - inset) << frame;
    // The card is inside the frame; around it the frame has the control's background.
    const QImage image = viewer->grab().toImage();
    const QPoint middle = whole.center();
    const QColor ground = image.pixelColor(1, middle.y());
    for (int x = 0; x < inset; ++x) {
      EXPECT_EQ(image.pixelColor(x, middle.y()), ground) << frame << ' ' << x;
      EXPECT_EQ(image.pixelColor(whole.right() - x, middle.y()), ground) << frame << ' ' << x;
    }
    EXPECT_NE(image.pixelColor(inset, middle.y()), ground) << frame;
  }
}

TEST_F(Surface, ListsLieWhollyInTheirPages) {
  const auto viewer = shownViewer();
  for (int i = 0; i < 6; ++i) {
    selectTab(*viewer, i);
    QCoreApplication::processEvents();
    const QWidget* shown = list(*viewer, i);
    EXPECT_TRUE(shown->parentWidget()->rect().contains(shown->geometry())) << i;
    EXPECT_TRUE(shown->isVisible()) << i;
  }
}

/// Every list is inside its page, which begins below the tabs.
void expectListsBelowTheTabs(const AuditViewer& viewer, const char* when) {
  auto* tabs = viewer.findChild<QTabWidget*>("SSTab1");
  const int tabsEnd = inViewer(tabs->tabBar(), viewer).bottom();
  for (int i = 0; i < 6; ++i) {
    tabs->setCurrentIndex(i);
    QCoreApplication::processEvents();
    const auto* shown = viewer.findChild<QTableView*>(QStringLiteral("lvListView%1").arg(i));
    EXPECT_TRUE(shown->parentWidget()->rect().contains(shown->geometry())) << when << ' ' << i;
    EXPECT_GT(inViewer(shown->horizontalHeader(), viewer).top(), tabsEnd) << when << ' ' << i;
    EXPECT_GT(shown->height(), 300) << when << ' ' << i;
  }
  tabs->setCurrentIndex(0);
}

TEST_F(Surface, ListsLieBelowTheTabsInEveryFont) {
  for (const int points : {7, 10, 18, 30}) {
    QFont font = QApplication::font();
    font.setPointSize(points);
    const auto before = newViewer();
    before->setFont(font);
    before->resize(1200, 800);
    before->show();
    expectListsBelowTheTabs(*before, "set before it is shown");

    const auto after = shownViewer();
    after->setFont(font);
    QCoreApplication::processEvents();
    expectListsBelowTheTabs(*after, "set while it is shown");
    after->setFont(QApplication::font());
    QCoreApplication::processEvents();
    expectListsBelowTheTabs(*after, "set back");
    EXPECT_NEAR(list(*after, 0)->height(), element(*after, "SSTab1")->height() - pixels(*after, 600), 1);
  }
}

TEST_F(Surface, HidingTheSideToolsGivesTheirStripToTheTabs) {
  const auto viewer = shownViewer();
  const auto* tabs = element(*viewer, "SSTab1");
  const QRect beside = tabs->geometry();
  viewer->setViewSideTools(false);
  EXPECT_EQ(tabs->x(), pixels(*viewer, 50));
  EXPECT_NEAR(tabs->width(), beside.width() + element(*viewer, "frameTools")->width(), 1);
  viewer->setViewSideTools(true);
  EXPECT_EQ(tabs->geometry(), beside);
}

TEST_F(Surface, ViewToolsAloneLeavesTheStripToTheProperty) {
  const auto viewer = shownViewer();
  viewer->ViewTools(false);
  EXPECT_TRUE(viewer->ViewSideTools());
  EXPECT_EQ(element(*viewer, "SSTab1")->x(), pixels(*viewer, 3720));
}

TEST_F(Surface, TooSmallLeavesTheLastValidSizeAndGrowingRestoresTheRule) {
  const auto viewer = shownViewer();
  const auto* tabs = element(*viewer, "SSTab1");
  const QRect before = tabs->geometry();
  viewer->resize(100, 20);
  EXPECT_EQ(tabs->size(), before.size());
  viewer->resize(1200, 800);
  EXPECT_EQ(tabs->geometry(), before);
}

TEST_F(Surface, NothingOfTheStripOverlapsAtAnySize) {
  const auto viewer = shownViewer();
  const QWidget* tree = element(*viewer, "tvTreeView");
  const QWidget* tabs = element(*viewer, "SSTab1");
  for (const int width : {40, 200, 260, 400, 700, 1000, 1500}) {
    for (int height = 10; height <= 900; height += 15) {
      SCOPED_TRACE(QStringLiteral("%1x%2").arg(width).arg(height).toStdString());
      viewer->resize(width, height);
      const QRect filter = element(*viewer, "frameFilter")->geometry();
      const QRect tools = element(*viewer, "frameTools")->geometry();
      ASSERT_FALSE(filter.intersects(tools));
      ASSERT_FALSE(filter.intersects(tabs->geometry()));
      ASSERT_FALSE(tools.intersects(tabs->geometry()));
      for (const char* below : {"btDateRangeFilter", "btClearDateRange", "lblDateRange"}) {
        const QRect other = inViewer(element(*viewer, below), *viewer);
        ASSERT_FALSE(inViewer(tree, *viewer).intersects(other)) << below;
        ASSERT_TRUE(filter.contains(other)) << below;
      }
    }
  }
}

TEST_F(Surface, NothingCoversTheStatusBarAtAnySize) {
  const auto viewer = shownViewer();
  const QWidget* status = element(*viewer, "StatusBar1");
  const QWidget* tabs = element(*viewer, "SSTab1");
  const int bars = element(*viewer, "SmartMenu")->height() + element(*viewer, "SmartToolbar")->height();
  for (const int width : {40, 200, 260, 400, 700, 1000, 1500}) {
    for (int height = 10; height <= 900; height += 15) {
      SCOPED_TRACE(QStringLiteral("%1x%2").arg(width).arg(height).toStdString());
      viewer->resize(width, height);
      const QRect bar = status->geometry() & viewer->rect();
      ASSERT_FALSE(bar.isEmpty());
      for (int x = bar.left(); x <= bar.right(); x += 13) {
        for (const int y : {bar.top(), bar.center().y(), bar.bottom()}) {
          const QWidget* seen = viewer->childAt(x, y);
          ASSERT_TRUE(seen == status || status->isAncestorOf(seen)) << x << ',' << y;
        }
      }
      // Too low for the rule, the tabs keep their last height and reach under the bar.
      if (height > bars + status->height() + pixels(*viewer, 150)) {
        ASSERT_FALSE(tabs->geometry().intersects(status->geometry()));
      }
    }
  }
}

TEST_F(Surface, AtItsSmallestSizeTheWholeStripIsInSight) {
  const auto viewer = shownViewer();
  viewer->resize(viewer->minimumSizeHint());
  const QRect tools = element(*viewer, "frameTools")->geometry();
  EXPECT_LE(tools.bottom(), element(*viewer, "StatusBar1")->y());
  EXPECT_GT(element(*viewer, "SSTab1")->width(), 100);
}

TEST_F(Surface, TheSmallestSizeLeavesOutAStripThatIsNotShown) {
  QWidget host;
  auto* layout = new QVBoxLayout(&host);
  auto* viewer = new AuditViewer(&host);
  layout->addWidget(viewer);
  host.resize(1200, 800);
  host.show();
  const QSize withStrip = host.minimumSizeHint();
  viewer->setViewSideTools(false);
  QCoreApplication::processEvents();
  EXPECT_EQ(host.minimumSizeHint().width(), withStrip.width() - pixels(*viewer, 3720));
  EXPECT_LT(host.minimumSizeHint().height(), withStrip.height());
  host.resize(10, 10);
  EXPECT_LT(host.width(), withStrip.width());
  EXPECT_GT(list(*viewer, 0)->height(), 100);
  viewer->setViewSideTools(true);
  EXPECT_EQ(host.minimumSizeHint(), withStrip);
}

TEST_F(Surface, AStatusTextThatIsCutEndsInDotsAndIsWholeInItsTooltip) {
  const QString text = "a sentence that is much longer than a narrow window has room for in its status bar";
  const auto viewer = shownViewer();
  auto& bar = *element<control::StatusPanels>(*viewer, "StatusBar1");
  auto& label = *element<control::ElidedLabel>(*viewer, "Status");
  bar.setStatus(text);
  EXPECT_EQ(label.toolTip(), "");
  EXPECT_EQ(label.shownText(), text);

  viewer->resize(400, 600);
  QCoreApplication::processEvents();
  EXPECT_EQ(bar.status(), text);
  EXPECT_EQ(textOfToolTip(label.toolTip()), text);
  const QString shown = label.shownText();
  EXPECT_TRUE(shown.endsWith(QChar(0x2026))) << shown.toStdString();
  EXPECT_TRUE(text.startsWith(shown.chopped(1))) << shown.toStdString();
  // The text that is reported is the text that is painted.
  const QImage cut = label.grab().toImage();
  bar.setStatus(shown);
  EXPECT_EQ(label.toolTip(), "");
  EXPECT_EQ(label.grab().toImage(), cut);
  bar.setStatus("");
  EXPECT_NE(label.grab().toImage(), cut);
}

TEST_F(Surface, APathInTheStatusTextIsNoMarkup) {
  const QString path = "Exported to <img src='/somewhere/picture.png'> & <b>a path</b> that is too long for the bar";
  const auto viewer = shownViewer();
  viewer->resize(400, 600);
  QCoreApplication::processEvents();
  element<control::StatusPanels>(*viewer, "StatusBar1")->setStatus(path);
  const QString tip = element<control::ElidedLabel>(*viewer, "Status")->toolTip();
  EXPECT_EQ(textOfToolTip(tip), path);
  EXPECT_FALSE(tip.contains("<img"));
}

TEST_F(Surface, SideTextsFitInEveryLanguage) {
  for (const char* offset : {"0", "10000", "20000", "30000", "40000"}) {
    settings.values["Language"] = offset;
    const auto viewer = shownViewer();
    QCoreApplication::processEvents();
    for (const char* name : {"btDateRangeFilter", "btClearDateRange"}) {
      const auto* button = element<QAbstractButton>(*viewer, name);
      const int icon = button->icon().isNull() ? 0 : button->iconSize().width();
      EXPECT_GE(button->width(), button->fontMetrics().horizontalAdvance(button->text()) + icon)
          << offset << ' ' << name;
      EXPECT_GE(button->height(), button->minimumSizeHint().height()) << offset << ' ' << name;
    }
    const QWidget* label = element(*viewer, "lblDateRange");
    EXPECT_GE(label->height(), label->heightForWidth(label->width())) << offset;
  }
}

TEST_F(Surface, ACaptionIsNoMarkupInItsHeadersTooltip) {
  const auto viewer = shownViewer();
  const QString name = QString::fromUtf8("<img src='/somewhere/picture.png'>\u202Egnp");
  server.answer = [&](db::ResultSink& sink) {
    const std::vector<db::Field> fields{{name.toStdString()}};
    sink.beginResult(fields);
    sink.row(std::vector<db::Cell>{{"1"}});
    sink.endResult();
  };
  viewer->TriggerAdvancedQuery("x");
  const QAbstractItemModel& model = *list(*viewer, 5)->model();
  ASSERT_EQ(model.headerData(0, Qt::Horizontal).toString(), name);
  EXPECT_EQ(textOfToolTip(model.headerData(0, Qt::Horizontal, Qt::ToolTipRole).toString()),
            "<img src='/somewhere/picture.png'>\\u202Egnp");
}

TEST_F(Surface, EmptyPagesSaySoInTheLanguage) {
  settings.values["Language"] = "30000";
  const auto viewer = shownViewer();
  EXPECT_EQ(static_cast<const ui::ResultTable*>(list(*viewer, 0))->emptyText(),
            QString::fromUtf8("Aún no se ha consultado. \"Ejecutar consulta\" o F5 muestra los registros."));
}

TEST_F(Surface, KeyColumnIsHiddenAndComesBackNarrower) {
  const auto viewer = shownViewer();
  for (int i = 0; i < 5; ++i) EXPECT_EQ(list(*viewer, i)->columnWidth(0), pixels(*viewer, 1440)) << i;
  viewer->ShowKeyField(false);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(list(*viewer, i)->columnWidth(0), 0) << i;
  viewer->ShowKeyField(true);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(list(*viewer, i)->columnWidth(0), pixels(*viewer, 1000)) << i;
  list(*viewer, 0)->setColumnWidth(0, 200);
  viewer->ShowKeyField(true);
  EXPECT_EQ(list(*viewer, 0)->columnWidth(0), pixels(*viewer, 1000));
}

TEST_F(Surface, TheCustomListHasNoKeyColumn) {
  const auto viewer = shownViewer();
  answerWithOneRow();
  viewer->TriggerAdvancedQuery("x");
  list(*viewer, 5)->setColumnWidth(0, 234);
  viewer->ShowKeyField(false);
  EXPECT_EQ(list(*viewer, 5)->columnWidth(0), 234);
  viewer->ShowKeyField(true);
  EXPECT_EQ(list(*viewer, 5)->columnWidth(0), 234);
}

TEST_F(Surface, ColumnSetupRestoresWidthsAndTouchesNoRows) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS"), record("2", "CS")}};
  viewer->TriggerQuery();
  viewer->ShowKeyField(false);
  list(*viewer, 0)->setColumnWidth(3, 300);
  viewer->ListViewColSetup();
  EXPECT_EQ(column(*viewer, 0), "1 2");
  for (int i = 0; i < 5; ++i) {
    ASSERT_EQ(list(*viewer, i)->model()->columnCount(), 18);
    for (int c = 0; c < 18; ++c) EXPECT_EQ(list(*viewer, i)->columnWidth(c), pixels(*viewer, 1440)) << i << ' ' << c;
  }
}

TEST_F(Surface, WidthsThatTheUserGaveSurviveAQuery) {
  const auto viewer = shownViewer();
  list(*viewer, 0)->setColumnWidth(1, 234);
  server.resultSets = {{record("1", "CS")}};
  viewer->TriggerQuery();
  click(*viewer, "btClear");
  EXPECT_EQ(list(*viewer, 0)->columnWidth(1), 234);
}

TEST_F(Surface, AHeaderClickSortsAndASecondOneReverses) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("7", "CS", "b"), record("10", "CS", "a"), record("8", "CS", "c")}};
  click(*viewer, "btQuery");
  EXPECT_EQ(column(*viewer, 0), "7 8 10");
  Q_EMIT list(*viewer, 0)->horizontalHeader()->sectionClicked(5);
  EXPECT_EQ(column(*viewer, 0, 5), "a b c");
  Q_EMIT list(*viewer, 0)->horizontalHeader()->sectionClicked(5);
  EXPECT_EQ(column(*viewer, 0, 5), "c b a");
  EXPECT_EQ(list(*viewer, 0)->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
  click(*viewer, "btQuery");
  EXPECT_EQ(column(*viewer, 0, 5), "c b a");
}

TEST_F(Surface, TheChosenFontGoesToAllSixLists) {
  const auto viewer = shownViewer();
  QFont chosen("DejaVu Sans Mono", 12);
  chosen.setItalic(true);
  chosen.setBold(true);
  ASSERT_FALSE(list(*viewer, 0)->font().bold());
  recorder->chosenFont = chosen;
  viewer->ChangeFont();
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(list(*viewer, i)->font().family(), "DejaVu Sans Mono") << i;
    EXPECT_EQ(list(*viewer, i)->font().pointSizeF(), 12) << i;
    EXPECT_TRUE(list(*viewer, i)->font().italic()) << i;
    EXPECT_TRUE(list(*viewer, i)->font().bold()) << i;
  }
  recorder->chosenFont.reset();
  viewer->ChangeFont();
  EXPECT_EQ(list(*viewer, 0)->font().family(), "DejaVu Sans Mono");
  EXPECT_EQ(recorder->offeredFont.pointSizeF(), 12);
  EXPECT_THAT(recorder->messages, ::testing::IsEmpty());
}

TEST_F(Surface, EveryElementHasANameForAssistance) {
  const auto viewer = shownViewer();
  for (const char* name : {"tvTreeView", "btDateRangeFilter", "btClearDateRange", "btQuery", "btSelectDB", "btDBInfo",
                           "btClear", "btSelectALL", "btUnselectALL", "btExcel", "lvListView0", "lvListView5",
                           "txtAdvancedQuery", "btOpen", "btSave", "btClearAdvQuery", "btEmunFields"})
    EXPECT_FALSE(element(*viewer, name)->accessibleName().isEmpty()) << name;
}

TEST_F(Surface, TabKeyWalksThroughTheElementsInOrder) {
  recorder->forms.insert("frmAdvancedFilters");
  const auto viewer = shownViewer();
  viewer->activateWindow();
  element(*viewer, "tvTreeView")->setFocus();
  QStringList visited;
  for (int i = 0; i < 12; ++i) {
    QWidget* focused = viewer->focusWidget();
    visited.append(focused->objectName());
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
    QCoreApplication::sendEvent(focused, &tab);
  }
  visited.append(viewer->focusWidget()->objectName());
  EXPECT_EQ(
      visited.join(' ').toStdString(),
      "tvTreeView btDateRangeFilter btClearDateRange btQuery btSelectDB btDBInfo btClear btSelectALL btUnselectALL "
      "btExcel btPrint qt_tabwidget_tabbar lvListView0");
}

}  // namespace
}  // namespace korvel::test
