#include "query/forms/field_picker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QListWidget>
#include <QPushButton>
#include <QStyleOptionViewItem>
#include <QTest>
#include <stdexcept>

#include "tests/control/recorder.h"

namespace korvel::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ui::MessageIcon;

class FieldPicker : public ::testing::Test {
 protected:
  query::frmFields& form() {
    if (!form_) {
      form_ = std::make_unique<query::frmFields>(query::QueryDialogContext{choices, language, recorder}, nullptr);
      form_->show();
    }
    return *form_;
  }
  QListWidget& fields() { return *form().findChild<QListWidget*>("ListView1"); }
  QPushButton& button() { return *form().findChild<QPushButton*>("Command1"); }
  void click(const QString& field, Qt::KeyboardModifiers modifiers = {}) {
    QListWidgetItem* item = fields().findItems(field, Qt::MatchExactly).value(0);
    if (item == nullptr) throw std::runtime_error(field.toStdString());
    QTest::mouseClick(fields().viewport(), Qt::LeftButton, modifiers, fields().visualItemRect(item).center());
  }
  void add() { QTest::mouseClick(&button(), Qt::LeftButton); }

  query::QueryChoices choices;
  settings::LanguageOffset language;
  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
  std::unique_ptr<query::frmFields> form_;
};

TEST_F(FieldPicker, CaptionsAreFixedEnglishInEveryLanguage) {
  language = settings::LanguageOffset("10000");
  EXPECT_EQ(form().windowTitle(), "Available Fields");
  EXPECT_EQ(button().text(), "Add Columns");
}

TEST_F(FieldPicker, TheColumnsOfTheTableInTheirOrder) {
  QStringList names;
  for (int i = 0; i < fields().count(); ++i) names.append(fields().item(i)->text());
  EXPECT_EQ(names, (QStringList{"Nr", "DateTime", "ProjectGUID", "DatabaseName", "ApplicationName", "TableName",
                                "FieldName", "EventType", "EventItem", "OldValue", "NewValue", "PCName", "OSUser",
                                "AppUser", "UserName", "AuditType", "Comments", "T1"}));
  EXPECT_THAT(fields().selectedItems(), IsEmpty());
}

TEST_F(FieldPicker, AllOfThemAreInSight) {
  const QRect last = fields().visualItemRect(fields().item(fields().count() - 1));
  EXPECT_TRUE(fields().viewport()->rect().contains(last));
}

TEST_F(FieldPicker, SelectedFieldsBecomeAQueryInTheOrderOfTheList) {
  click("UserName");
  click("DateTime", Qt::ControlModifier);
  add();
  EXPECT_EQ(choices.pickedQuery, "Select DateTime,UserName from Korvel_Audit_Trails");
  EXPECT_FALSE(form().isVisible());
}

TEST_F(FieldPicker, ClickingSeveralKeepsThemAllAndASecondClickTakesOneBack) {
  for (const char* field : {"UserName", "Nr", "DateTime", "T1", "Nr"}) click(field);
  add();
  EXPECT_EQ(choices.pickedQuery, "Select DateTime,UserName,T1 from Korvel_Audit_Trails");
}

TEST_F(FieldPicker, SpaceSelectsAndMovingSelectsNothing) {
  QApplication::setActiveWindow(&form());
  fields().setFocus();
  QTest::keyClick(&fields(), Qt::Key_Down);
  QTest::keyClick(&fields(), Qt::Key_Space);
  QTest::keyClick(&fields(), Qt::Key_Down);
  QTest::keyClick(&fields(), Qt::Key_Down);
  QTest::keyClick(&fields(), Qt::Key_Space);
  add();
  EXPECT_EQ(choices.pickedQuery, "Select DateTime,DatabaseName from Korvel_Audit_Trails");
}

TEST_F(FieldPicker, ShiftTakesAlongWhatLiesBetweenAndKeepsTheRest) {
  click("T1");
  click("DateTime");
  click("DatabaseName", Qt::ShiftModifier);
  add();
  EXPECT_EQ(choices.pickedQuery, "Select DateTime,ProjectGUID,DatabaseName,T1 from Korvel_Audit_Trails");
}

TEST_F(FieldPicker, WhatIsSelectedIsShownAsTicked) {
  click("Nr");
  const auto tick = [&](int row) {
    QStyleOptionViewItem option;
    option.initFrom(&fields());
    option.rect = fields().visualItemRect(fields().item(row));
    option.features = QStyleOptionViewItem::HasCheckIndicator;
    const QRect box = fields().style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, &fields());
    return fields().viewport()->grab(box).toImage();
  };
  EXPECT_NE(tick(0), tick(1));
  EXPECT_EQ(tick(2), tick(3));
  click("Nr");
  click("DateTime");
  EXPECT_NE(tick(0), tick(1));
}

TEST_F(FieldPicker, AllFieldsByKeyboard) {
  fields().setFocus();
  QTest::keyClick(&fields(), Qt::Key_A, Qt::ControlModifier);
  // The default button.
  QTest::keyClick(&fields(), Qt::Key_Return);
  EXPECT_EQ(choices.pickedQuery,
            "Select Nr,DateTime,ProjectGUID,DatabaseName,ApplicationName,TableName,FieldName,EventType,EventItem,"
            "OldValue,NewValue,PCName,OSUser,AppUser,UserName,AuditType,Comments,T1 from Korvel_Audit_Trails");
}

TEST_F(FieldPicker, ARangeByKeyboard) {
  fields().setFocus();
  fields().setCurrentRow(1);
  QTest::keyClick(&fields(), Qt::Key_Down, Qt::ShiftModifier);
  QTest::keyClick(&fields(), Qt::Key_Down, Qt::ShiftModifier);
  add();
  EXPECT_EQ(choices.pickedQuery, "Select DateTime,ProjectGUID,DatabaseName from Korvel_Audit_Trails");
}

TEST_F(FieldPicker, AnEmptySelectionIsRefusedInTheLanguage) {
  language = settings::LanguageOffset("10000");
  choices.pickedQuery = "old";
  click("Nr");
  click("Nr", Qt::ControlModifier);
  add();
  EXPECT_THAT(recorder->messages, ElementsAre(ShownMessage{MessageIcon::information, "KorvelAudit Viewer Message",
                                                           "Wählen Sie mindestens eine Spalte aus."}));
  EXPECT_EQ(recorder->owners.back(), &form());
  EXPECT_TRUE(form().isVisible());
  EXPECT_EQ(choices.pickedQuery, "");
  click("T1");
  add();
  EXPECT_EQ(choices.pickedQuery, "Select T1 from Korvel_Audit_Trails");
}

TEST_F(FieldPicker, TheRefusalMayTakeTheDialogAlong) {
  form();
  recorder->onMessage = [this] { form_.reset(); };
  button().click();
  EXPECT_EQ(form_, nullptr);
}

TEST_F(FieldPicker, ClosingItPicksNothing) {
  click("Nr");
  QTest::keyClick(&form(), Qt::Key_Escape);
  EXPECT_FALSE(form().isVisible());
  EXPECT_EQ(choices.pickedQuery, "");
  EXPECT_THAT(recorder->messages, IsEmpty());
}

}  // namespace
}  // namespace korvel::test
