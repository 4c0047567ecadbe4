#include "ui/value_list.h"

#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>

#include "tests/ui/painted.h"
#include "ui/style/viewer_style.h"
#include "ui/texts.h"

namespace korvel::ui {
namespace {

using ::testing::ElementsAre;

ValueListContent users() {
  return {.values = {{.text = "Deirdre O'Brien", .count = 9104},
                     {.text = "Luca Rossi", .count = 7377},
                     {.text = "Heike Bäuerle", .count = 6920},
                     {.text = "(empty)", .count = 2015, .isQuiet = true}}};
}

/// 2003 with one month of one day, 2004 with a month of two days.
ValueListContent days() {
  return {.values = {{.text = "2003", .count = 1},
                     {.text = "12", .count = 1, .parent = 0},
                     {.text = "2003-12-31", .count = 1, .parent = 1},
                     {.text = "2004", .count = 5},
                     {.text = "03", .count = 5, .parent = 3},
                     {.text = "2004-03-07", .count = 2, .parent = 4},
                     {.text = "2004-03-09", .count = 3, .parent = 4}},
          .isTree = true};
}

class ValueListTest : public ::testing::Test {
 protected:
  ValueListTest() {
    applyStyle(window);
    window.resize(600, 500);
    window.show();
    list.setTexts([](std::string_view key) { return ui::ownText(key, settings::LanguageOffset()); });
  }
  void open(ValueListContent content, ValueList::Source source = {}) {
    list.open(std::move(content), QRect(window.mapToGlobal(QPoint(50, 20)), QSize(100, 25)), std::move(source));
    QApplication::processEvents();
  }
  QLineEdit& search() { return *list.findChild<QLineEdit*>("ValueSearch"); }
  QCheckBox& all() { return *list.findChild<QCheckBox*>("AllValues"); }
  QTreeView& tree() { return *list.findChild<QTreeView*>("Values"); }
  QPushButton& ok() { return *list.findChild<QPushButton*>("ChooseValues"); }
  void press(int key) { QTest::keyClick(QApplication::focusWidget(), Qt::Key(key)); }
  std::vector<std::string> texts(bool checked) {
    std::vector<std::string> found;
    for (const std::size_t place : list.listed(checked)) found.push_back(list.values()[place].text.toStdString());
    return found;
  }

  QWidget window;
  ValueList list{&window};
};

TEST_F(ValueListTest, ShowsTheValuesWithTheirCountsAndAllOfThem) {
  open(users());
  EXPECT_EQ(tree().model()->rowCount(), 4);
  EXPECT_EQ(tree().model()->index(0, 0).data().toString(), "Deirdre O'Brien");
  EXPECT_EQ(tree().model()->index(0, 1).data().toString(), countText(9104));
  EXPECT_EQ(all().checkState(), Qt::Checked);
  EXPECT_TRUE(search().hasFocus());
  EXPECT_TRUE(list.findChild<QLabel*>("MoreValues")->isHidden());
}

TEST_F(ValueListTest, HasRoomForTheTextsOfItsButtons) {
  QFont large = list.font();
  large.setPointSizeF(2 * large.pointSizeF());
  list.setFont(large);
  for (const char* language : {"0", "10000", "20000", "30000", "40000"}) {
    list.setTexts([language](std::string_view key) { return ui::ownText(key, settings::LanguageOffset(language)); });
    open({.values = {{.text = "x", .count = 2}}});
    for (const char* name : {"CancelValues", "ChooseValues"}) {
      const auto* button = list.findChild<QPushButton*>(name);
      EXPECT_GE(button->width(), button->sizeHint().width()) << button->text().toStdString();
    }
    list.close();
  }
}

TEST_F(ValueListTest, KeysChooseValues) {
  open(users());
  QSignalSpy chosen(&list, &ValueList::chosen);
  // None, then two of them.
  QTest::keyClick(&all(), Qt::Key_Space);
  EXPECT_FALSE(ok().isEnabled()) << "nothing would be left";
  press(Qt::Key_Return);
  EXPECT_EQ(chosen.count(), 0);
  EXPECT_TRUE(list.isVisible());
  search().setFocus();
  press(Qt::Key_Down);
  ASSERT_TRUE(tree().hasFocus());
  press(Qt::Key_Space);
  press(Qt::Key_Down);
  press(Qt::Key_Down);
  press(Qt::Key_Space);
  EXPECT_EQ(all().checkState(), Qt::PartiallyChecked);
  EXPECT_THAT(texts(true), ElementsAre("Deirdre O'Brien", "Heike Bäuerle"));
  press(Qt::Key_Return);
  EXPECT_EQ(chosen.count(), 1);
  EXPECT_FALSE(list.isVisible());
}

TEST_F(ValueListTest, EscAndCancelChooseNothing) {
  QSignalSpy chosen(&list, &ValueList::chosen);
  open(users());
  press(Qt::Key_Escape);
  EXPECT_FALSE(list.isVisible());
  open(users());
  QTest::mouseClick(list.findChild<QPushButton*>("CancelValues"), Qt::LeftButton);
  EXPECT_FALSE(list.isVisible());
  EXPECT_EQ(chosen.count(), 0);
}

TEST_F(ValueListTest, ASearchNarrowsTheListAndOkTakesWhatIsListed) {
  open(users());
  QTest::keyClicks(&search(), "BÄU");
  EXPECT_TRUE(list.isSearching());
  EXPECT_EQ(tree().model()->rowCount(), 1);
  EXPECT_THAT(texts(true), ElementsAre("Heike Bäuerle"));
  QSignalSpy chosen(&list, &ValueList::chosen);
  press(Qt::Key_Return);
  EXPECT_EQ(chosen.count(), 1);
  EXPECT_THAT(texts(true), ElementsAre("Heike Bäuerle"));
}

TEST_F(ValueListTest, AllTicksWhatIsListedOnly) {
  open(users());
  all().click();
  EXPECT_TRUE(texts(true).empty());
  QTest::keyClicks(&search(), "ss");
  all().click();
  search().clear();
  EXPECT_THAT(texts(true), ElementsAre("Luca Rossi"));
}

TEST_F(ValueListTest, AClickAnywhereOnARowTicksIt) {
  open(users());
  const QRect row = tree().visualRect(tree().model()->index(1, 0));
  QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, row.center());
  EXPECT_THAT(texts(false), ElementsAre("Luca Rossi"));
  const QRect box(row.left(), row.top(), 20, row.height());
  QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, box.center());
  EXPECT_TRUE(texts(false).empty());
}

TEST_F(ValueListTest, DatesAreATree) {
  open(days());
  QAbstractItemModel& model = *tree().model();
  ASSERT_EQ(model.rowCount(), 2);
  const QModelIndex march = model.index(0, 0, model.index(1, 0));
  EXPECT_EQ(march.data().toString(), "03");
  EXPECT_EQ(model.rowCount(march), 2);
  // A year stands for its days, and is half ticked when some are.
  tree().setFocus();
  tree().setCurrentIndex(model.index(0, 0));
  press(Qt::Key_Space);
  EXPECT_THAT(texts(true), ElementsAre("2004-03-07", "2004-03-09"));
  EXPECT_EQ(model.index(0, 0).data(Qt::CheckStateRole).toInt(), Qt::Unchecked);
  tree().expandAll();
  tree().setCurrentIndex(model.index(0, 0, march));
  press(Qt::Key_Space);
  EXPECT_THAT(texts(true), ElementsAre("2004-03-09"));
  EXPECT_EQ(model.index(1, 0).data(Qt::CheckStateRole).toInt(), Qt::PartiallyChecked);
  // A search finds days and whole years.
  search().setText("03-07");
  EXPECT_THAT(texts(false), ElementsAre("2004-03-07"));
  EXPECT_TRUE(texts(true).empty());
}

TEST_F(ValueListTest, ItsModelKeepsTheRulesOfModels) {
  ValueChoiceModel model;
  QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  model.setValues(days().values);
  model.search("2004");
  model.checkListed(false);
  model.search("");
  model.setValues(users().values);
  EXPECT_EQ(model.rowCount(), 4);
}

TEST_F(ValueListTest, SaysWhereThereAreMoreValuesAndAsksForThem) {
  ValueListContent some = users();
  some.moreThan = 4;
  QStringList asked;
  open(some, [&](const QString& text) {
    asked.append(text);
    return ValueListContent{.values = {{.text = "Zoe", .count = 3}}};
  });
  EXPECT_EQ(list.findChild<QLabel*>("MoreValues")->text(), "More than 4 different values. Type to search.");
  EXPECT_FALSE(list.findChild<QLabel*>("MoreValues")->isHidden());
  QTest::keyClicks(&search(), "z");
  EXPECT_THAT(asked, ElementsAre(QString("z")));
  EXPECT_THAT(texts(true), ElementsAre("Zoe"));
  EXPECT_TRUE(list.findChild<QLabel*>("MoreValues")->isHidden());
}

TEST_F(ValueListTest, ShowsTenLinesAtMostAndTakesManyValues) {
  ValueListContent many;
  for (int i = 0; i < 50'000; ++i) many.values.push_back({.text = QString::number(i), .count = 1});
  open(many);
  const int row = tree().visualRect(tree().model()->index(0, 0)).height();
  EXPECT_GE(tree().viewport()->height(), 10 * row);
  EXPECT_LT(tree().viewport()->height(), 11 * row);
  EXPECT_EQ(tree().model()->rowCount(), 50'000);
  list.close();
  open(users());
  EXPECT_GE(tree().viewport()->height(), 4 * row);
  EXPECT_LT(tree().viewport()->height(), 5 * row);
}

TEST_F(ValueListTest, ValuesAreShownToTheLetter) {
  open({.values = {{.text = QString::fromUtf8("a\u202Eb\nc"), .count = 1}}});
  EXPECT_EQ(tree().model()->index(0, 0).data().toString(), "a\\u202Eb c");
  EXPECT_TRUE(tree().model()->index(0, 0).data(Qt::ToolTipRole).toString().startsWith("<div"));
}

}  // namespace
}  // namespace korvel::ui
