// What lists show of finding and filtering: signs in the header, marks behind texts.
#include <gmock/gmock.h>

#include <QApplication>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

#include "tests/ui/painted.h"
#include "ui/result_table.h"
#include "ui/style/system_appearance.h"
#include "ui/style/viewer_style.h"

namespace korvel::ui {
namespace {

class ListSigns : public ::testing::Test {
 protected:
  ListSigns() : model(3, 3) {
    applyStyle(table);
    table.setPalette(lightPalette());
    model.setItem(0, 0, new QStandardItem("TIC-1901"));
    model.setHorizontalHeaderLabels({"Item", "Date Time", "A very long caption indeed"});
    table.setModel(&model);
    for (int column = 0; column < 3; ++column) table.setColumnWidth(column, 120);
    table.resize(500, 200);
    table.show();
    QApplication::processEvents();
  }
  ResultHeader& header() { return *table.header(); }
  QImage section(int column) {
    return painted(*header().viewport())
        .copy(header().sectionViewportPosition(column), 0, header().sectionSize(column), header().height());
  }
  const Theme& theme() { return Theme::of(table); }

  QStandardItemModel model;
  ResultTable table;
};

TEST_F(ListSigns, AreThereOnRequestAndFilledWhereAColumnIsFiltered) {
  for (const SchemeCase& scheme : schemes) {
    table.setPalette(scheme.palette({}));
    header().setFilterSigns(false);
    const QImage without = section(0);
    EXPECT_TRUE(header().signPlace(0).isEmpty());
    header().setFilterSigns(true, "Filter");
    EXPECT_NE(section(0), without);
    EXPECT_EQ(count(section(0), theme().accent), 0) << scheme.name;
    header().setFilteredColumns({0});
    EXPECT_TRUE(header().isFiltered(0));
    EXPECT_GT(count(section(0), theme().accent), 15) << scheme.name;
    EXPECT_EQ(count(section(1), theme().accent), 0) << scheme.name;
    header().setFilteredColumns({});
    EXPECT_EQ(count(section(0), theme().accent), 0) << scheme.name;
  }
}

TEST_F(ListSigns, TheColumnThatKeysMeanShowsItsSignWhereTheCaptionIsCutForIt) {
  header().setFilterSigns(true);
  const QFontMetrics metrics(semiBold(header().font()));
  table.setColumnWidth(1, metrics.horizontalAdvance("Date Time") + 20);
  ASSERT_FALSE(header().signPlace(1).isEmpty());
  ASSERT_EQ(header().signRoom(1), 0) << "it would cut the caption";
  table.activateWindow();
  table.setFocus();
  QApplication::processEvents();
  table.setCurrentIndex(model.index(0, 1));
  EXPECT_GT(header().signRoom(1), 0);
  table.setCurrentIndex(model.index(0, 0));
  EXPECT_EQ(header().signRoom(1), 0);
  table.setCurrentIndex(model.index(0, 1));
  table.clearFocus();
  EXPECT_EQ(header().signRoom(1), 0) << "keys mean something else";
}

TEST_F(ListSigns, AClickOnASignFiltersAndDoesNotSort) {
  header().setFilterSigns(true);
  QSignalSpy filter(&header(), &ResultHeader::filterRequested);
  QSignalSpy sort(&header(), &QHeaderView::sectionClicked);
  QTest::mouseClick(header().viewport(), Qt::LeftButton, {}, header().signPlace(1).center());
  ASSERT_EQ(filter.count(), 1);
  EXPECT_EQ(filter[0][0].toInt(), 1);
  EXPECT_EQ(sort.count(), 0);
  QTest::mouseClick(header().viewport(), Qt::LeftButton, {},
                    {header().sectionViewportPosition(1) + 20, header().height() / 2});
  EXPECT_EQ(filter.count(), 1);
  EXPECT_EQ(sort.count(), 1);
  // A button that is left before it is released does nothing.
  QTest::mousePress(header().viewport(), Qt::LeftButton, {}, header().signPlace(1).center());
  QTest::mouseRelease(header().viewport(), Qt::LeftButton, {}, header().signPlace(0).center());
  EXPECT_EQ(filter.count(), 1);
  EXPECT_EQ(sort.count(), 1);
  // The right button is the header's.
  QTest::mouseClick(header().viewport(), Qt::RightButton, {}, header().signPlace(1).center());
  EXPECT_EQ(filter.count(), 1);
}

TEST_F(ListSigns, AreMovedWithTheirSection) {
  header().setFilterSigns(true);
  header().moveSection(0, 2);
  QSignalSpy filter(&header(), &ResultHeader::filterRequested);
  QTest::mouseClick(header().viewport(), Qt::LeftButton, {}, header().signPlace(0).center());
  ASSERT_EQ(filter.count(), 1);
  EXPECT_EQ(filter[0][0].toInt(), 0);
  EXPECT_GT(header().signPlace(0).left(), header().signPlace(2).left());
}

TEST_F(ListSigns, TheHandlesForResizingKeepWorking) {
  header().setFilterSigns(true);
  const int edge = header().sectionViewportPosition(0) + header().sectionSize(0) - 1;
  const int middle = header().height() / 2;
  QSignalSpy filter(&header(), &ResultHeader::filterRequested);
  QTest::mousePress(header().viewport(), Qt::LeftButton, {}, {edge, middle});
  QMouseEvent move(QEvent::MouseMove, QPointF(edge + 30, middle),
                   header().viewport()->mapToGlobal(QPoint(edge + 30, middle)), Qt::NoButton, Qt::LeftButton, {});
  QApplication::sendEvent(header().viewport(), &move);
  QTest::mouseRelease(header().viewport(), Qt::LeftButton, {}, {edge + 30, middle});
  EXPECT_EQ(header().sectionSize(0), 150);
  QSignalSpy fit(&header(), &QHeaderView::sectionHandleDoubleClicked);
  QTest::mouseDClick(header().viewport(), Qt::LeftButton, {}, {edge + 30, middle});
  EXPECT_EQ(fit.count(), 1);
  EXPECT_EQ(filter.count(), 0);
}

TEST_F(ListSigns, TheCaptionIsCutBeforeTheSign) {
  header().setFilterSigns(true);
  // The drawing has some air around it in the place that takes clicks.
  const QRect place = header().signPlace(2).translated(-header().sectionViewportPosition(2), 0).adjusted(3, 0, -3, 0);
  const QImage captionAndSign = section(2);
  model.setHeaderData(2, Qt::Horizontal, QString());
  const QImage signAlone = section(2);
  EXPECT_EQ(captionAndSign.copy(place), signAlone.copy(place));
  EXPECT_NE(captionAndSign, signAlone);
}

TEST_F(ListSigns, ANarrowColumnKeepsItsCaptionUntilThePointerIsThere) {
  table.setCurrentIndex(model.index(0, 2));  // the keys mean another one
  header().setFilterSigns(true);
  model.setHorizontalHeaderItem(0, new QStandardItem("Entry ID"));
  const int caption = QFontMetrics(semiBold(header().font())).horizontalAdvance("Entry ID");
  table.setColumnWidth(0, std::min(79, std::max(56, caption + 18)));
  EXPECT_EQ(header().signRoom(0), 0);
  header().setFilteredColumns({0});
  EXPECT_GT(header().signRoom(0), 0);
  header().setFilteredColumns({});
  QHoverEvent over(QEvent::HoverMove, QPointF(10, 5), QPointF(), QPointF(5, 5));
  QApplication::sendEvent(header().viewport(), &over);
  EXPECT_GT(header().signRoom(0), 0);
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(header().viewport(), &leave);
  table.setColumnWidth(0, caption + 32);
  EXPECT_GT(header().signRoom(0), 0);
  header().showSort(0, Qt::AscendingOrder);
  EXPECT_EQ(header().signRoom(0), 0) << "the arrow has the room";
  table.setColumnWidth(0, 30);
  EXPECT_TRUE(header().signPlace(0).isEmpty()) << "its width is for sorting and resizing";
}

class FoundMarks : public ListSigns {
 protected:
  QImage cell(int row, int column) {
    return painted(*table.viewport()).copy(table.visualRect(model.index(row, column)));
  }
  void mark(std::vector<TextMark> marks) {
    table.rowDelegate()->setMarks([marks = std::move(marks)](const QModelIndex& index, const QString&) {
      return index.row() == 0 && index.column() == 0 ? marks : std::vector<TextMark>();
    });
    table.viewport()->update();
  }
};

TEST_F(FoundMarks, TintTheTextThatIsFoundInTwoStrengths) {
  for (const SchemeCase& scheme : schemes) {
    table.setPalette(scheme.palette({}));
    table.rowDelegate()->setMarks({});
    const QImage plain = cell(0, 0);
    EXPECT_EQ(count(plain, theme().found), 0);
    mark({{.from = 0, .length = 3}});
    EXPECT_GT(count(cell(0, 0), theme().found), 50) << scheme.name;
    EXPECT_EQ(count(cell(0, 0), theme().foundCurrent), 0) << scheme.name;
    mark({{.from = 0, .length = 3, .isCurrent = true}});
    EXPECT_GT(count(cell(0, 0), theme().foundCurrent), 50) << scheme.name;
    EXPECT_NE(theme().found, theme().foundCurrent);
    for (const QColor& ground : {theme().found, theme().foundCurrent})
      EXPECT_GE(contrastRatio(theme().text, ground), 4.5) << scheme.name;
    // On a selected row too.
    table.selectRow(0);
    EXPECT_GT(count(cell(0, 0), theme().foundCurrent), 50) << scheme.name;
    table.clearSelection();
  }
}

TEST_F(FoundMarks, StandBehindTheirCharacters) {
  const QFontMetrics metrics(table.font());
  mark({{.from = 4, .length = 2}});
  const QImage image = cell(0, 0);
  int first = image.width();
  int last = 0;
  for (int x = 0; x < image.width(); ++x) {
    if (count(image, theme().found, QRect(x, 0, 1, image.height())) == 0) continue;
    first = std::min(first, x);
    last = std::max(last, x);
  }
  EXPECT_NEAR(first, 8 + metrics.horizontalAdvance("TIC-"), 1);
  EXPECT_NEAR(last, 8 + metrics.horizontalAdvance("TIC-19"), 1);
}

TEST_F(FoundMarks, OfWhatIsCutAwayMarkTheEllipsis) {
  table.setColumnWidth(0, 50);
  mark({{.from = 6, .length = 2}});
  const QImage image = cell(0, 0);
  EXPECT_GT(count(image, theme().found), 10);
  EXPECT_EQ(count(image, theme().found, QRect(0, 0, 15, image.height())), 0);
}

TEST_F(FoundMarks, AreAskedForByPaintedCellsOnly) {
  model.setRowCount(1000);
  for (int row = 0; row < 1000; ++row) model.setItem(row, 1, new QStandardItem("value"));
  int asked = 0;
  table.rowDelegate()->setMarks([&](const QModelIndex&, const QString&) {
    ++asked;
    return std::vector<TextMark>();
  });
  painted(*table.viewport());
  EXPECT_GT(asked, 0);
  EXPECT_LT(asked, 100);
}

TEST_F(FoundMarks, AreLinesWhereNothingMayBeTinted) {
  const SystemAppearanceOverride strong({.highContrast = true});
  QPalette palette = lightPalette();
  palette.setColor(QPalette::Base, Qt::white);
  table.setPalette(palette);
  const QImage plain = cell(0, 0);
  mark({{.from = 0, .length = 3}});
  const QImage marked = cell(0, 0);
  EXPECT_NE(marked, plain);
  mark({{.from = 0, .length = 3, .isCurrent = true}});
  EXPECT_NE(cell(0, 0), marked);
}

}  // namespace
}  // namespace korvel::ui
