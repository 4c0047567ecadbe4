// Which element is explained by which topic of the help, and F1.
#include "control/help_topics.h"

#include <gmock/gmock.h>

#include <QFileDialog>
#include <QFontDialog>
#include <QHeaderView>
#include <QInputDialog>
#include <QMenu>
#include <QPrintDialog>
#include <QPrinter>
#include <QTest>
#include <set>

#include "control/commands/command_tables.h"
#include "control/forms/comparison_view.h"
#include "control/forms/page_progress_dialog.h"
#include "control/forms/report_preview.h"
#include "control/qt_control_services.h"
#include "control/texts.h"
#include "korvel/FailureBar.h"
#include "tests/control/command_surfaces.h"
#include "tests/control/no_sections.h"
#include "tests/control/when_modal.h"
#include "tests/support/temporary_folder.h"
#include "ui/message_box.h"

namespace korvel::test {
namespace {

using control::helpTopicFor;
using control::helpTopics;
using control::libraryState;
using control::WhenModal;
using testing::ElementsAre;
using Row = std::pair<QString, QString>;

const QString controlPlace = QStringLiteral("korvel::AuditViewer");

/// What was opened: file and topic, by a blank.
std::vector<std::string> opened(const Recorder& recorder) {
  std::vector<std::string> texts;
  for (const auto& [file, topic] : recorder.topicsOpened) texts.push_back((file + ' ' + topic).toStdString());
  return texts;
}

class HelpTopics : public CommandTest {
 protected:
  HelpTopics() {
    CannedRow early = record("1", "CS");
    CannedRow late = record("2", "RT");
    early[1] = "2004-03-07 12:00:00.000";
    late[1] = "2004-03-09 12:00:00.000";
    early[9] = late[9] = "4";
    early[10] = late[10] = "5";
    server.resultSets = {{early, late}};
    // With everything that is there only where something is remembered.
    control::libraryState().remembered = {QString::fromStdString((folder_ / "remembered.json").string()),
                                          control::Remembered::Extent::all};
  }

  /// A shown control with two records in its list.
  std::unique_ptr<AuditViewer> filledViewer() {
    auto viewer = shownViewer();
    activate(*viewer);
    click(*viewer, "btQuery");
    EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), 2);
    list(*viewer, 0)->setFocus();
    list(*viewer, 0)->setCurrentIndex(list(*viewer, 0)->model()->index(0, 7));
    return viewer;
  }

  /// Notes which rows of the table the elements of a window are found by, and reports those without a topic.
  void walk(const QWidget& window, const std::string& what) {
    QList<const QWidget*> elements{&window};
    for (const auto* child : window.findChildren<QWidget*>()) elements.append(child);
    for (const QWidget* element : elements) {
      note(*element);
      if (element->isVisibleTo(&window) && element->focusPolicy() != Qt::NoFocus) {
        EXPECT_NE(helpTopicFor(element), "") << what << ": " << nameOf(*element);
      }
    }
  }
  void walkShownWindows(const std::string& what) {
    for (const QWidget* window : QApplication::topLevelWidgets())
      if (window->isVisible()) walk(*window, what);
  }
  static std::string nameOf(const QWidget& element) {
    return std::string(element.metaObject()->className()) + ' ' + element.objectName().toStdString();
  }
  [[nodiscard]] bool wasSeen(const QString& place, const QString& element) const {
    return seen_.count({place, element}) != 0;
  }

 private:
  void note(const QWidget& element) {
    for (const QWidget* around = &element; around != nullptr; around = around->parentWidget()) {
      for (const QString& place : control::helpNames(*around)) {
        if (control::topicOf(place).isEmpty()) continue;
        if (around == &element) {
          seen_.insert({place, QString()});
        } else {
          for (const QString& name : control::helpNames(element)) seen_.insert({place, name});
        }
        return;
      }
    }
  }

  std::set<Row> seen_;
  TemporaryFolder folder_;
};

/// Goes through all windows of the control, so that no element is without a topic, and no row without an element.
TEST_F(HelpTopics, AreThereForEachElementAndForNothingElse) {
  const auto viewer = filledViewer();
  for (int page = 5; page >= 0; --page) {
    selectTab(*viewer, page);
    walk(*viewer, "page " + std::to_string(page));
  }
  QTableView* const rows = list(*viewer, 0);
  struct Tool {
    const char* name;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
  };
  for (const Tool& tool :
       {Tool{"find", Qt::Key_F, Qt::ControlModifier}, Tool{"filter", Qt::Key_Down, Qt::AltModifier},
        Tool{"summary", Qt::Key_G, Qt::ControlModifier}, Tool{"history", Qt::Key_H, Qt::ControlModifier},
        Tool{"activity", Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier},
        Tool{"exceptions", Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier},
        Tool{"record", Qt::Key_Return, Qt::NoModifier}}) {
    rows->setFocus();
    rows->setCurrentIndex(rows->model()->index(0, 7));
    QTest::keyClick(rows, tool.key, tool.modifiers);
    walkShownWindows(tool.name);
    for (QWidget* window : QApplication::topLevelWidgets())
      if (window->isVisible() && window != viewer.get()) window->close();
  }
  viewer->TakeSnapshot();
  viewer->CompareWithSnapshot();
  walkShownWindows("snapshots");

  control::QtControlServices services;
  for (const QString& name :
       {control::form_name::serverBrowser, control::form_name::dateRange, control::form_name::fields,
        control::form_name::fileList, control::form_name::printFont, control::form_name::about}) {
    const WhenModal answer([&](QWidget* dialog) {
      walk(*dialog, name.toStdString());
      dialog->close();
    });
    services.showForm(viewer.get(), name);
  }
  const control::ComparisonView comparison(viewer.get());
  walk(comparison, "comparison");
  auto sheets =
      std::make_unique<output::pages::ReportSheets>(std::make_unique<NoSections>(), output::pages::PageTexts{});
  ASSERT_TRUE(sheets->layOut());
  const control::ReportPreview preview(std::move(sheets), viewer.get());
  walk(preview, "preview");
  QWidget owner;
  const control::PageProgressDialog pages(owner, std::chrono::hours{1});
  for (const auto* dialog : owner.findChildren<QDialog*>()) walk(*dialog, "pages");
  FailureBar bar;
  walk(bar, "failure bar");
  const ui::MessageBox box(QMessageBox::Information, "title", "text", QMessageBox::Ok, viewer.get());
  walk(box, "message");
  QFileDialog files(viewer.get());
  files.setOption(QFileDialog::DontUseNativeDialog);
  walk(files, "files");
  const QInputDialog text(viewer.get());
  walk(text, "text");
  QFontDialog font(viewer.get());
  font.setOption(QFontDialog::DontUseNativeDialog);
  walk(font, "font");
  QPrinter printer;
  const QPrintDialog print(&printer, viewer.get());
  walk(print, "print");

  for (const control::HelpTopic& row : helpTopics()) {
    // Commands and messages are looked at below, the ways to a first database by the tests of the host.
    if (row.place == "command" || row.place == "message" || row.place == "firstDoors") continue;
    EXPECT_TRUE(wasSeen(row.place, row.element))
        << "no element " << row.place.toStdString() << ' ' << row.element.toStdString();
  }
}

TEST_F(HelpTopics, OfTheControlsOwnElementsAreMoreThanThatOfTheWindow) {
  const auto viewer = shownViewer();
  const QString window = control::topicOf(controlPlace);
  for (int page = 0; page < 6; ++page) {
    selectTab(*viewer, page);
    for (const auto* element : viewer->findChildren<QWidget*>())
      if (element->isVisible() && element->focusPolicy() != Qt::NoFocus) {
        EXPECT_NE(helpTopicFor(element), window) << nameOf(*element);
      }
  }
}

TEST_F(HelpTopics, AreThereForEachCommand) {
  std::set<QString> keys{"mnupopupitem"};
  for (const control::MenuRow& row : control::menuTable())
    if (!row.key.empty()) keys.insert(control::fromUtf8(row.key));
  for (const control::ToolbarRow& row : control::toolbarTable())
    if (!row.key.empty() && !row.placeholder) keys.insert(control::fromUtf8(row.key));
  control::CommandItems columns;
  control::buildPopup(columns, "Column");
  for (const auto& entry : columns.at(1).children) keys.insert(control::fromUtf8(entry->key));
  for (const QString& key : keys) EXPECT_NE(control::topicOf("command", key), "") << key.toStdString();
  for (const control::HelpTopic& row : helpTopics()) {
    if (row.place != "command") continue;
    // A key with a point is that of a text, which throws where there is none.
    if (row.element.contains('.')) {
      EXPECT_NE(control::ownText(row.element.toStdString()), "");
    } else {
      EXPECT_EQ(keys.count(row.element), 1U) << "no command " << row.element.toStdString();
    }
  }
}

TEST_F(HelpTopics, AreThereForEachEntryOfTheListsMenusInFiveLanguages) {
  const auto viewer = filledViewer();
  QTableView* const rows = list(*viewer, 0);
  for (const char* offset : {"0", "10000", "20000", "30000", "40000"}) {
    libraryState().language = settings::LanguageOffset(offset);
    int entries = 0;
    for (QWidget* target : {rows->viewport(), rows->horizontalHeader()->viewport()}) {
      const QPoint place =
          target == rows->viewport() ? rows->visualRect(rows->model()->index(0, 7)).center() : target->rect().center();
      QContextMenuEvent event(QContextMenuEvent::Mouse, place, target->mapToGlobal(place));
      QApplication::sendEvent(target, &event);
      auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      ASSERT_NE(menu, nullptr);
      QList<const QAction*> all;
      for (const QAction* entry : menu->actions()) {
        all.append(entry);
        if (entry->menu() != nullptr)
          for (const QAction* inside : entry->menu()->actions()) all.append(inside);
      }
      for (const QAction* entry : all) {
        if (entry->isSeparator()) continue;
        ++entries;
        EXPECT_NE(helpTopicFor(*entry), "") << offset << ' ' << entry->text().toStdString();
      }
      menu->close();
    }
    EXPECT_GT(entries, 17 + 15);
  }
}

TEST_F(HelpTopics, OfMessagesAreFoundByWhatIsSaidInFiveLanguages) {
  for (const char* offset : {"0", "10000", "20000", "30000", "40000"}) {
    libraryState().language = settings::LanguageOffset(offset);
    for (const control::HelpTopic& row : helpTopics()) {
      if (row.place != "message") continue;
      bool isNumber = false;
      const int number = row.element.toInt(&isNumber);
      QString text = isNumber ? control::loadText(10000 + number) : control::ownText(row.element.toStdString());
      for (const char* place : {"%1", "%2", "%3", "%4"}) text.replace(QLatin1String(place), QStringLiteral("X (7)"));
      const QString found = control::helpTopicOfMessage(QStringLiteral("70:") + text + QStringLiteral("\nmore"));
      EXPECT_EQ(found, row.topic) << offset << ' ' << text.toStdString();
    }
    EXPECT_EQ(control::helpTopicOfMessage("Nothing that the program says"), "");
  }
}

TEST_F(HelpTopics, OpenByF1AtTheElementWithTheFocus) {
  settings.values["ViewerAppPath"] = "/opt/KorvelAuditViewer.exe";
  const auto viewer = filledViewer();
  const std::string file = "/opt/KorvelAuditViewerHelp_Eng.chm";
  QTest::keyClick(list(*viewer, 0), Qt::Key_F1);
  element(*viewer, "tvTreeView")->setFocus();
  QTest::keyClick(element(*viewer, "tvTreeView"), Qt::Key_F1);
  viewer->HelpOnFocus();
  EXPECT_THAT(opened(*recorder),
              ElementsAre(file + " pages.html#all", file + " query.html#categories", file + " query.html#categories"));
  // With another key held down it is another key.
  QTest::keyClick(element(*viewer, "tvTreeView"), Qt::Key_F1, Qt::ControlModifier);
  EXPECT_EQ(recorder->topicsOpened.size(), 3);
  EXPECT_TRUE(recorder->helpOpened.isEmpty());
}

TEST_F(HelpTopics, OpenByF1AtTheHighlightedEntryOfAMenuWhichIsClosed) {
  const auto viewer = filledViewer();
  QAction* const file = entry(*viewer, "FILE");
  QTest::mouseClick(menuBar(*viewer), Qt::LeftButton, {}, menuBar(*viewer)->actionGeometry(file).center());
  QMenu* const menu = file->menu();
  ASSERT_TRUE(menu->isVisible());
  menu->setActiveAction(entry(*viewer, "FILE/SELECT"));
  ASSERT_EQ(menu->activeAction(), entry(*viewer, "FILE/SELECT"));
  QTest::keyClick(menu, Qt::Key_F1);
  EXPECT_FALSE(menu->isVisible());
  EXPECT_THAT(opened(*recorder), ElementsAre(" commands.html#SELECT"));
}

TEST_F(HelpTopics, OpenByF1InDialogsAndMessages) {
  const auto viewer = shownViewer();
  control::QtControlServices services;
  {
    const WhenModal answer([](QWidget* dialog) {
      QTest::keyClick(dialog, Qt::Key_F1);
      dialog->close();
    });
    services.showForm(viewer.get(), control::form_name::dateRange);
  }
  {
    const WhenModal answer([](QWidget* dialog) {
      QTest::keyClick(dialog, Qt::Key_F1);
      dialog->close();
    });
    services.messageBox(viewer.get(), ui::MessageIcon::information, "t",
                        control::ownText("failure.portClosed").arg("A", "B"));
  }
  EXPECT_THAT(opened(*recorder), ElementsAre(" query.html#dates", " messages.html#failure.portClosed"));
}

TEST_F(HelpTopics, DoNotTakeF1FromTheWindowsOfAHost) {
  const auto viewer = shownViewer();
  QFileDialog dialog;
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.show();
  QTest::keyClick(&dialog, Qt::Key_F1);
  EXPECT_TRUE(recorder->topicsOpened.isEmpty());
}

TEST_F(HelpTopics, WithoutOneTheContentsAreOpened) {
  const auto viewer = newViewer();
  QWidget elsewhere;
  elsewhere.show();
  elsewhere.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&elsewhere));
  viewer->HelpOnFocus();
  EXPECT_TRUE(recorder->topicsOpened.isEmpty());
  ASSERT_EQ(recorder->helpOpened.size(), 1);
  EXPECT_EQ(recorder->helpOpened.first().second, control::HelpCommand::contents);
}

}  // namespace
}  // namespace korvel::test
