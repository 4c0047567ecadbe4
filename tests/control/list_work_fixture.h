#pragma once

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

#include "control/list_area.h"
#include "tests/control/viewer_fixture.h"
#include "ui/chip_bar.h"
#include "ui/find_bar.h"
#include "ui/value_list.h"

namespace korvel::test {

/// A viewer whose standard lists show six records of three users, two areas and three days, worked on by keys.
class ListWork : public ViewerTest {
 protected:
  enum Column { number, time, project, database, application, area, item, event, itemId, oldValue, userName = 14 };

  static CannedRow row(const std::string& nr, const std::string& when, const std::string& where, const std::string& id,
                       const std::string& user) {
    CannedRow row = record(nr, "CS", where);
    row[time] = when;
    row[itemId] = id;
    row[userName] = user;
    return row;
  }
  ListWork() {
    server.resultSets = {{row("1", "2004-03-07 03:10:44.310", "Screen", "TIC-1901", "Luca Rossi"),
                          row("2", "2004-03-07 04:10:44.310", "Screen", "WIC-2008", "Luca Rossi"),
                          row("3", "2004-03-08 03:10:44.310", "Alarm", "TIC-1926", "Heike Bäuerle"),
                          row("4", "2004-03-09 03:10:44.310", "Alarm", "tic-7", "Luca Rossi"),
                          row("5", "2004-04-01 03:10:44.310", "Screen", "PIC-4020", ""),
                          row("6", "2004-04-01 04:10:44.310", "Screen", "PIC-4021", "José Núñez")}};
  }
  std::unique_ptr<AuditViewer> filledViewer() {
    auto viewer = shownViewer();
    viewer->activateWindow();
    click(*viewer, "btQuery");
    list(*viewer, 0)->setFocus();
    return viewer;
  }

  static ui::FindBar& bar(const AuditViewer& viewer, int index = 0) {
    return *list(viewer, index)->parentWidget()->findChild<ui::FindBar*>();
  }
  static QLineEdit& findText(const AuditViewer& viewer) { return *bar(viewer).findChild<QComboBox*>()->lineEdit(); }
  static QString findCount(const AuditViewer& viewer) { return bar(viewer).findChild<QLabel*>("FindCount")->text(); }
  static ui::ChipBar& chipBar(const AuditViewer& viewer, int index = 0) {
    return *list(viewer, index)->parentWidget()->findChild<ui::ChipBar*>();
  }
  static ui::ValueList& values(const AuditViewer& viewer, int index = 0) {
    return *list(viewer, index)->findChild<ui::ValueList*>("ValueList");
  }
  static QString shownCount(const AuditViewer& viewer) {
    return chipBar(viewer).findChild<QLabel*>("ShownCount")->text();
  }
  /// "Event = UPDATE; User Name = 2 values"
  static QString chips(const AuditViewer& viewer, int index = 0) {
    QStringList texts;
    for (const ui::Chip& chip : chipBar(viewer, index).chips()) texts.append(chip.column + ' ' + chip.condition);
    return chipBar(viewer, index).isHidden() ? QString() : texts.join("; ");
  }
  /// A key for what has the keyboard.
  static void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWidget* const target = QApplication::activePopupWidget() != nullptr
                                ? QApplication::activePopupWidget()->focusWidget()
                                : QApplication::focusWidget();
    ASSERT_NE(target, nullptr);
    QTest::keyClick(target, Qt::Key(key), modifiers);
  }
  static void type(const char* text) {
    QWidget* const target = QApplication::activePopupWidget() != nullptr
                                ? QApplication::activePopupWidget()->focusWidget()
                                : QApplication::focusWidget();
    ASSERT_NE(target, nullptr);
    QTest::keyClicks(target, QString::fromUtf8(text));
  }
  static void goTo(const AuditViewer& viewer, int rowNumber, int columnNumber) {
    QTableView* view = list(viewer, 0);
    view->setFocus();
    view->setCurrentIndex(view->model()->index(rowNumber, columnNumber));
  }
  static QString currentCell(const AuditViewer& viewer) { return list(viewer, 0)->currentIndex().data().toString(); }
  /// The lines of the list of values: "[x] Luca Rossi 3".
  static QStringList lines(const AuditViewer& viewer) {
    const QAbstractItemModel& model = *values(viewer).findChild<QTreeView*>("Values")->model();
    QStringList texts;
    for (int i = 0; i < model.rowCount(); ++i)
      texts.append((model.index(i, 0).data(Qt::CheckStateRole).toInt() == Qt::Checked ? "[x] " : "[ ] ") +
                   model.index(i, 0).data().toString() + ' ' + model.index(i, 1).data().toString());
    return texts;
  }
};

}  // namespace korvel::test
