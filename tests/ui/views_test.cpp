#include <gmock/gmock.h>

#include <QApplication>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QStyleFactory>
#include <QTextDocument>
#include <QTreeWidget>

#include "tests/ui/painted.h"
#include "ui/check_tree.h"
#include "ui/result_table.h"
#include "ui/shown_text.h"
#include "ui/style/system_appearance.h"
#include "ui/style/viewer_style.h"

namespace korvel::ui {
namespace {

void click(QWidget& target, const QPoint& at) {
  for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
    QMouseEvent event(type, at, target.mapToGlobal(at), Qt::LeftButton,
                      type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&target, &event);
  }
}

/// A list of three columns whose first cell of each row is its number.
struct List {
  explicit List(int rows, const QPalette& palette = lightPalette()) : model(rows, 3) {
    applyStyle(table);
    table.setPalette(palette);
    for (int row = 0; row < rows; ++row) model.setItem(row, 0, new QStandardItem(QString::number(48211 + row)));
    model.setHorizontalHeaderLabels({"Entry ID", "Date Time", "Project"});
    table.setModel(&model);
    table.resize(400, 300);
    table.show();
    QApplication::processEvents();
  }
  QImage rows() { return painted(*table.viewport()); }
  const Theme& theme() { return Theme::of(table); }

  QStandardItemModel model;
  ResultTable table;
};

TEST(ResultTableTest, RowsAreTintedAlternatelyAndSelectionKeepsTheText) {
  for (const SchemeCase& scheme : schemes) {
    List list(6, scheme.palette({}));
    list.table.selectRow(2);
    list.table.clearFocus();
    const QImage image = list.rows();
    const int x = 250;
    const auto middle = [&](int row) { return list.table.rowViewportPosition(row) + list.table.rowHeight(row) / 2; };
    EXPECT_EQ(image.pixelColor(x, middle(0)), list.theme().surface) << scheme.name;
    EXPECT_EQ(image.pixelColor(x, middle(1)), list.theme().alternateRow) << scheme.name;
    EXPECT_EQ(image.pixelColor(x, middle(2)), list.theme().selection) << scheme.name;
    const QRect cell = list.table.visualRect(list.model.index(2, 0));
    EXPECT_GT(count(image, list.theme().text, cell), 5) << scheme.name << ": text in its usual colour";
  }
}

TEST(ResultTableTest, RowsAreOfTheDrawnHeightAndGrowWithTheFont) {
  List list(2);
  const int usual = list.table.rowHeight(0);
  EXPECT_EQ(usual, std::max(px(&list.table, space::listRow), list.table.fontMetrics().height() + px(&list.table, 6)));
  QFont large = list.table.font();
  large.setPointSize(30);
  list.table.setFont(large);
  EXPECT_GT(list.table.rowHeight(0), list.table.fontMetrics().height());
  EXPECT_GT(list.table.rowHeight(0), usual);
}

TEST(ResultTableTest, HasNoVerticalLines) {
  List list(4);
  const QImage image = list.rows();
  EXPECT_EQ(count(image, list.theme().border, QRect(0, 0, 300, 4 * list.table.rowHeight(0))), 0);
}

TEST(ResultTableTest, EmptyListSaysSoInItsMiddle) {
  for (const SchemeCase& scheme : schemes) {
    List list(0, scheme.palette({}));
    EXPECT_EQ(count(list.rows(), list.theme().muted), 0);
    list.table.setEmptyText("There are no records yet.");
    const QImage image = list.rows();
    const QRect middle = image.rect().adjusted(0, image.height() / 3, 0, -image.height() / 3);
    EXPECT_GT(count(image, list.theme().muted, middle), 10) << scheme.name;
    list.model.appendRow(new QStandardItem("1"));
    EXPECT_EQ(count(list.rows(), list.theme().muted), 0) << scheme.name << ": gone with the first record";
  }
}

TEST(ResultTableTest, AnEmptyListSaysAForeignTextToTheLetter) {
  List list(0);
  list.table.setEmptyText(QString::fromUtf8("failed: \u202Efdp <b>x</b>"));
  EXPECT_EQ(list.table.accessibleDescription(), list.table.emptyText());
  const QImage hostile = list.rows();
  list.table.setEmptyText("failed: \\u202Efdp <b>x</b>");
  EXPECT_EQ(hostile, list.rows());
  // A very long one is neither laid out nor painted completely.
  list.table.setEmptyText(QString(2000, QLatin1Char('x')));
  const QImage whole = list.rows();
  list.table.setEmptyText(QString(50'000'000, QLatin1Char('x')));
  EXPECT_EQ(whole, list.rows());
}

TEST(ResultTableTest, FocusIsSeenOnTheWholeCurrentRow) {
  List list(5);
  list.table.activateWindow();
  list.table.setFocus();
  list.table.setCurrentIndex(list.model.index(3, 0));
  QApplication::processEvents();
  ASSERT_TRUE(list.table.hasFocus());
  const int top = list.table.rowViewportPosition(3);
  const QImage image = list.rows();
  for (const int x : {5, 150, 250}) EXPECT_EQ(image.pixelColor(x, top), list.theme().accent) << x;
  EXPECT_NE(image.pixelColor(5, list.table.rowViewportPosition(1)), list.theme().accent);
}

TEST(ResultTableTest, LongAndBrokenValuesStayInOneLine) {
  List list(2);
  list.model.setItem(0, 1, new QStandardItem(QString(5'000'000, QLatin1Char('x'))));
  list.model.setItem(1, 1, new QStandardItem("first\nsecond\r\nthird\tfourth"));
  list.table.setColumnWidth(1, 60);
  const QImage image = list.rows();
  const QRect next = list.table.visualRect(list.model.index(0, 2));
  EXPECT_EQ(count(image, list.theme().text, next), 0) << "nothing runs into the next cell";
  EXPECT_EQ(list.table.itemDelegate()->sizeHint({}, list.model.index(1, 1)).height(),
            list.table.itemDelegate()->sizeHint({}, list.model.index(1, 0)).height());
}

TEST(ResultTableTest, WhatTurnsTheDirectionOfWritingIsVisible) {
  EXPECT_EQ(RowDelegate::shownText(QString::fromUtf8("invoice\u202Efdp.exe")), "invoice\\u202Efdp.exe");
  EXPECT_EQ(RowDelegate::shownText(QString::fromUtf8("a\u200Eb\u2066c\uFEFF")), "a\\u200Eb\\u2066c\\uFEFF");
  EXPECT_EQ(RowDelegate::shownText(QString::fromUtf8("x\U000E0041")), "x\\U000E0041");
  // Joiners and soft hyphens shape words; other scripts and pictures are unchanged.
  for (const char* kept : {"a\u00ADb", "a\u200Cb\u200Dc", "\u05E9\u05DC\u05D5\u05DD", "\U0001F600 done", "\\u202E"})
    EXPECT_EQ(RowDelegate::shownText(QString::fromUtf8(kept)), QString::fromUtf8(kept));

  List list(2);
  list.model.setItem(0, 1, new QStandardItem(QString::fromUtf8("abc\u202Edef")));
  list.model.setItem(1, 1, new QStandardItem("abc\\u202Edef"));
  list.model.setHorizontalHeaderItem(1, new QStandardItem(QString::fromUtf8("abc\u202Edef")));
  list.model.setHorizontalHeaderItem(2, new QStandardItem("abc\\u202Edef"));
  for (const int column : {1, 2}) list.table.setColumnWidth(column, 130);
  list.table.clearFocus();
  list.table.setAlternatingRowColors(false);
  QImage rows[2];
  QImage captions[2];
  for (const int i : {0, 1}) {
    const QRect cell = list.table.visualRect(list.model.index(i, 1));
    rows[i] = list.rows().copy(cell);
    const QHeaderView& header = *list.table.header();
    captions[i] = painted(*header.viewport()).copy(header.sectionViewportPosition(1 + i), 0, 120, header.height());
  }
  EXPECT_EQ(rows[0], rows[1]);
  EXPECT_EQ(captions[0], captions[1]);
}

TEST(ResultTableTest, ATooltipShowsItsTextToTheLetter) {
  const QString hostile = QString::fromUtf8("first\n<img src='x'> & &lt;b&gt; \u202Efdp");
  QTextDocument shown;
  shown.setHtml(plainToolTip(hostile));
  EXPECT_EQ(shown.toPlainText(), QString::fromUtf8("first\n<img src='x'> & &lt;b&gt; \\u202Efdp"));
  EXPECT_TRUE(Qt::mightBeRichText(plainToolTip("plain"))) << "its own markup, and nothing else's, is read";
  shown.setHtml(plainToolTip(QString(1'000'000, QLatin1Char('x'))));
  EXPECT_EQ(shown.toPlainText().size(), 2001);
}

TEST(ResultHeaderTest, ArrowIsInTheAccentBesideTheSortedColumnOnly) {
  for (const SchemeCase& scheme : schemes) {
    List list(1, scheme.palette({}));
    const auto arrow = [&](int column) {
      const QImage image = painted(*list.table.header()->viewport());
      const QRect section(list.table.columnViewportPosition(column), 0, list.table.columnWidth(column), image.height());
      return count(image, list.theme().accent, section);
    };
    EXPECT_EQ(arrow(0) + arrow(1), 0) << scheme.name;
    list.table.header()->showSort(1, Qt::AscendingOrder);
    EXPECT_EQ(arrow(0), 0) << scheme.name;
    EXPECT_GT(arrow(1), 5) << scheme.name;
    list.table.header()->showSort(-1, Qt::AscendingOrder);
    EXPECT_EQ(arrow(1), 0) << scheme.name;
  }
}

TEST(ResultHeaderTest, AscendingPointsUp) {
  List list(1);
  const auto widthOfRow = [&](bool upper) {
    const QImage image = painted(*list.table.header()->viewport());
    int first = -1;
    int last = -1;
    for (int y = 0; y < image.height(); ++y) {
      if (count(image, list.theme().accent, QRect(0, y, image.width(), 1)) == 0) continue;
      if (first < 0) first = y;
      last = y;
    }
    return count(image, list.theme().accent, QRect(0, upper ? first : last, image.width(), 1));
  };
  list.table.header()->showSort(0, Qt::AscendingOrder);
  EXPECT_LT(widthOfRow(true), widthOfRow(false));
  list.table.header()->showSort(0, Qt::DescendingOrder);
  EXPECT_GT(widthOfRow(true), widthOfRow(false));
}

TEST(ResultHeaderTest, AscendingPointsUpInEveryStyleOfThePlatform) {
  const SystemAppearanceOverride native({.native = true});
  for (const QString& name : QStyleFactory::keys()) {
    List list(1, QApplication::palette());
    ResultHeader& header = *list.table.header();
    ASSERT_EQ(qobject_cast<const ViewerStyle*>(header.style()), nullptr);
    const std::unique_ptr<QStyle> style(QStyleFactory::create(name));
    header.setStyle(style.get());
    list.table.setColumnWidth(0, 200);
    const auto picture = [&] { return painted(*header.viewport()).copy(0, 0, 200, header.height()); };
    header.showSort(-1, Qt::AscendingOrder);
    // A header without a text gets only the arrow.
    list.model.setHorizontalHeaderItem(0, new QStandardItem(QString()));
    const QImage plain = picture();
    const auto pointsUp = [&](Qt::SortOrder order) {
      header.showSort(0, order);
      const QImage image = picture();
      std::vector<int> widths;
      for (int y = 0; y < image.height(); ++y) {
        int width = 0;
        for (int x = 0; x < image.width(); ++x) width += image.pixel(x, y) != plain.pixel(x, y) ? 1 : 0;
        if (width > 0) widths.push_back(width);
      }
      EXPECT_GE(widths.size(), 4U) << name.toStdString();
      return !widths.empty() && widths.front() < widths.back();
    };
    EXPECT_TRUE(pointsUp(Qt::AscendingOrder)) << name.toStdString();
    EXPECT_FALSE(pointsUp(Qt::DescendingOrder)) << name.toStdString();
    header.setStyle(nullptr);
  }
}

TEST(ResultHeaderTest, CanBeMovedAndResizedAndAClickAloneDoesNotSort) {
  List list(3);
  EXPECT_TRUE(list.table.header()->sectionsMovable());
  EXPECT_EQ(list.table.header()->sectionResizeMode(0), QHeaderView::Interactive);
  QSignalSpy clicked(list.table.header(), &QHeaderView::sectionClicked);
  click(*list.table.header()->viewport(), QPoint(20, 10));
  EXPECT_EQ(clicked.count(), 1);
  EXPECT_FALSE(list.table.header()->isSortIndicatorShown());
  EXPECT_EQ(list.model.index(0, 0).data().toString(), "48211");
}

/// A tree like the filter tree: two roots, one with a child.
struct Tree {
  explicit Tree(const QPalette& palette = lightPalette()) {
    applyStyle(widget);
    widget.setPalette(palette);
    styleCheckTree(widget);
    root = new QTreeWidgetItem(&widget, {"Configuration"});
    child = new QTreeWidgetItem(root, {"Alarms"});
    other = new QTreeWidgetItem(&widget, {"Runtime"});
    for (auto* item : {root, child, other}) {
      item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
      item->setCheckState(0, Qt::Unchecked);
    }
    widget.expandAll();
    widget.resize(220, 200);
    widget.show();
    QApplication::processEvents();
  }
  QImage rows() { return painted(*widget.viewport()); }
  const Theme& theme() { return Theme::of(widget); }

  QTreeWidget widget;
  QTreeWidgetItem* root;
  QTreeWidgetItem* child;
  QTreeWidgetItem* other;
};

TEST(FilterTreeLook, TickedBoxesAreInTheAccent) {
  for (const SchemeCase& scheme : schemes) {
    Tree tree(scheme.palette({}));
    tree.widget.clearFocus();
    EXPECT_EQ(count(tree.rows(), tree.theme().accent), 0) << scheme.name;
    tree.child->setCheckState(0, Qt::Checked);
    EXPECT_GT(count(tree.rows(), tree.theme().accent, tree.widget.visualItemRect(tree.child)), 50) << scheme.name;
    EXPECT_EQ(count(tree.rows(), tree.theme().accent, tree.widget.visualItemRect(tree.other)), 0) << scheme.name;
  }
}

TEST(FilterTreeLook, WhatIsPaintedAsTheBoxIsWhatAClickTicks) {
  Tree tree;
  tree.child->setCheckState(0, Qt::Checked);
  const QRect row = tree.widget.visualItemRect(tree.child);
  const QImage image = tree.rows();
  QRect box;
  for (int y = row.top(); y <= row.bottom(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixelColor(x, y).rgb() == tree.theme().accent.rgb()) box |= QRect(x, y, 1, 1);
    }
  }
  ASSERT_GE(box.width(), px(&tree.widget, space::check) - 2);
  const auto ticksAt = [&](const QPoint& at) {
    tree.child->setCheckState(0, Qt::Unchecked);
    click(*tree.widget.viewport(), at);
    return tree.child->checkState(0) == Qt::Checked;
  };
  EXPECT_TRUE(ticksAt(box.center()));
  EXPECT_TRUE(ticksAt(box.topLeft()));
  EXPECT_TRUE(ticksAt(box.bottomRight()));
  EXPECT_FALSE(ticksAt(QPoint(box.right() + 4, box.center().y())));
  EXPECT_FALSE(ticksAt(QPoint(box.left() - 4, box.center().y())));
}

TEST(FilterTreeLook, RowsAreOfTheDrawnHeightAndRootsSemiBold) {
  Tree tree;
  EXPECT_EQ(tree.widget.visualItemRect(tree.child).height(), px(&tree.widget, space::treeRow));
  EXPECT_EQ(tree.widget.visualItemRect(tree.root).height(), px(&tree.widget, space::treeRow));
  tree.root->setText(0, "same text");
  tree.child->setText(0, "same text");
  const auto ink = [&](const QTreeWidgetItem* item) {
    return count(tree.rows(), tree.theme().text, tree.widget.visualItemRect(item));
  };
  EXPECT_GT(ink(tree.root), ink(tree.child));
}

TEST(TreeLook, SelectedTextWithAColourOfItsOwnIsReadable) {
  for (const SchemeCase& scheme : schemes) {
    QTreeWidget tree;
    applyStyle(tree);
    tree.setPalette(scheme.palette({}));
    auto* item = new QTreeWidgetItem(&tree, {"MMMMMMMM"});
    const Theme& theme = Theme::of(tree);
    item->setForeground(0, theme.muted);
    tree.setCurrentItem(item);
    item->setSelected(true);
    tree.resize(200, 100);
    tree.show();
    QApplication::processEvents();
    const QRect row = tree.visualItemRect(item);
    const QImage image = painted(*tree.viewport());
    EXPECT_GT(count(image, theme.onSelection, row), 5) << scheme.name;
  }
}

TEST(FilterTreeLook, SelectionKeepsTheTextAndFocusIsSeen) {
  for (const SchemeCase& scheme : schemes) {
    Tree tree(scheme.palette({}));
    tree.widget.setCurrentItem(tree.child);
    tree.widget.activateWindow();
    tree.widget.setFocus();
    QApplication::processEvents();
    ASSERT_TRUE(tree.widget.hasFocus());
    const QRect row = tree.widget.visualItemRect(tree.child);
    const QImage image = tree.rows();
    EXPECT_GT(count(image, tree.theme().selection, row), 500) << scheme.name;
    EXPECT_GT(count(image, tree.theme().text, row), 0) << scheme.name << ": text in its usual colour";
    EXPECT_GT(count(image, tree.theme().accent, row), 40) << scheme.name << ": the frame of focus";
  }
}

}  // namespace
}  // namespace korvel::ui
