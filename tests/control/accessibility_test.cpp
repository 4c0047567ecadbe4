// What a screen reader is told of each window, the room for large text, and the way of the Tab key, in five languages.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTest>
#include <functional>

#include "control/forms/comparison_view.h"
#include "control/forms/report_preview.h"
#include "control/qt_control_services.h"
#include "tests/control/no_sections.h"
#include "tests/control/viewer_fixture.h"
#include "tests/control/when_modal.h"
#include "tests/support/accessible_tree.h"
#include "tests/support/cut_texts.h"
#include "tests/support/tab_order.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {
namespace {

using control::libraryState;
using control::WhenModal;

/// Looks at a window of which the test says what it is.
using Look = std::function<void(QWidget&, const std::string&)>;

/// Shows the pages, the tools of a list and the dialogs in one language.
class EachWindow : public ViewerTest, public testing::WithParamInterface<const char*> {
 protected:
  EachWindow() {
    libraryState().language = settings::LanguageOffset(GetParam());
    // With what is there only where something is remembered.
    libraryState().remembered = {QString::fromStdString((folder_ / "remembered.json").string()),
                                 control::Remembered::Extent::all};
    libraryState().remembered.addDatabase({"PLANT1", "Korvel_Audit"});
  }

  void lookAtPages(const Look& look) {
    const auto viewer = activeViewer();
    for (int page = 0; page < 6; ++page) {
      selectTab(*viewer, page);
      QCoreApplication::processEvents();
      look(*viewer, "page " + std::to_string(page));
    }
  }

  void lookAtTools(const Look& look) {
    struct Tool {
      const char* name;
      Qt::Key key;
      Qt::KeyboardModifiers modifiers;
    };
    const std::vector<Tool> tools = {{"find", Qt::Key_F, Qt::ControlModifier},
                                     {"filter", Qt::Key_Down, Qt::AltModifier},
                                     {"summary", Qt::Key_G, Qt::ControlModifier},
                                     {"history", Qt::Key_H, Qt::ControlModifier},
                                     {"activity", Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier},
                                     {"exceptions", Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier},
                                     {"record", Qt::Key_Return, Qt::NoModifier}};
    CannedRow early = record("1", "CS");
    CannedRow late = record("2", "RT");
    early[1] = "2004-03-07 12:00:00.000";
    late[1] = "2004-03-09 12:00:00.000";
    // Numbers, so that the history has a plot.
    early[9] = late[9] = "4";
    early[10] = late[10] = "5";
    server.resultSets = {{early, late}};
    const auto viewer = activeViewer();
    click(*viewer, "btQuery");
    QTableView* const rows = list(*viewer, 0);
    ASSERT_EQ(rows->model()->rowCount(), 2);
    rows->setFocus();
    QTest::keyClick(rows, Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), "x");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return, Qt::ControlModifier);
    QCoreApplication::processEvents();
    look(*viewer, "chips");
    rows->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    for (const Tool& tool : tools) {
      const auto before = shownElements();
      rows->setFocus();
      rows->setCurrentIndex(rows->model()->index(0, 7));
      QTest::keyClick(rows, tool.key, tool.modifiers);
      EXPECT_TRUE(QTest::qWaitFor([&] { return shownElements() != before; })) << tool.name;
      for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible()) {
          QCoreApplication::processEvents();
          look(*window, std::string(tool.name) + " in " + nameOf(*window));
        }
      for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible() && window != viewer.get()) window->close();
      viewer->activateWindow();
      ASSERT_TRUE(QTest::qWaitForWindowActive(viewer.get()));
    }
  }

  /// The windows of snapshots and comparisons, and the preview of a report.
  void lookAtEvidence(const Look& look) {
    const auto viewer = activeViewer();
    const auto lookAt = [&look](QWidget& window) {
      const auto isInFront = [&window] {
        window.activateWindow();
        return QApplication::activeWindow() == &window;
      };
      ASSERT_TRUE(QTest::qWaitFor(isInFront)) << nameOf(window);
      look(window, nameOf(window));
      window.close();
    };
    viewer->TakeSnapshot();
    viewer->CompareWithSnapshot();
    for (const char* name : {"frmSnapshot", "frmComparison"}) {
      auto* const form = element<QWidget>(*viewer, name);
      ASSERT_TRUE(form != nullptr && form->isVisible()) << name;
      lookAt(*form);
    }
    evidence::ComparedSnapshot compared;
    compared.server = "PLANT1";
    compared.database = "Korvel_Audit";
    compared.found.rowsBefore = compared.found.rowsNow = 12'000;
    compared.found.removed = 1;
    compared.found.differences.resize(1);
    control::ComparisonView comparison(viewer.get());
    comparison.showComparison(std::make_shared<const evidence::ComparedSnapshot>(compared));
    lookAt(comparison);
    auto sheets =
        std::make_unique<output::pages::ReportSheets>(std::make_unique<NoSections>(), output::pages::PageTexts{});
    ASSERT_TRUE(sheets->layOut());
    control::ReportPreview preview(std::move(sheets), viewer.get());
    preview.show();
    lookAt(preview);
  }

  static void lookAtDialogs(const Look& look) {
    control::QtControlServices services;
    QWidget owner;
    owner.show();
    for (const QString& name :
         {control::form_name::serverBrowser, control::form_name::dateRange, control::form_name::fields,
          control::form_name::fileList, control::form_name::printFont, control::form_name::about}) {
      bool wasShown = false;
      const WhenModal answer([&](QWidget* dialog) {
        wasShown = true;
        look(*dialog, name.toStdString());
        dialog->close();
      });
      services.showForm(&owner, name);
      EXPECT_TRUE(wasShown) << name.toStdString();
    }
  }

  static void expectNone(const QStringList& findings, const std::string& what) {
    EXPECT_TRUE(findings.isEmpty()) << what << ":\n" << findings.join(QLatin1Char('\n')).toStdString();
  }

 private:
  std::unique_ptr<AuditViewer> activeViewer() {
    auto viewer = shownViewer();
    viewer->resize(screenSize);
    viewer->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(viewer.get()));
    return viewer;
  }
  /// Number of elements that can be used, in all windows that are shown.
  static int shownElements() {
    int count = 0;
    for (QWidget* window : QApplication::topLevelWidgets())
      if (window->isVisible()) count += AccessibleTree::usable(*window);
    return count;
  }
  static std::string nameOf(const QWidget& window) {
    return std::string(window.metaObject()->className()) + ' ' + window.objectName().toStdString();
  }

  TemporaryFolder folder_;

 protected:
  /// Of a small screen.
  static constexpr QSize screenSize{1280, 800};
};

class Accessibility : public EachWindow {
 protected:
  static void expectNothingMissing(QWidget& window, const std::string& what) {
    EXPECT_GT(AccessibleTree::usable(window), 0) << what;
    expectNone(AccessibleTree::missing(window), what);
  }
};

TEST_P(Accessibility, OfTheControlNamesEachElement) {
  lookAtPages(expectNothingMissing);
}

TEST_P(Accessibility, OfEachToolOfAListNamesEachElement) {
  lookAtTools(expectNothingMissing);
}

TEST_P(Accessibility, OfEachWindowOfSnapshotsNamesEachElement) {
  lookAtEvidence(expectNothingMissing);
}

TEST_P(Accessibility, OfEachDialogNamesEachElement) {
  lookAtDialogs(expectNothingMissing);
}

/// Text of twice the usual size.
class LargeText : public EachWindow {
 protected:
  LargeText() {
    QFont font = usual_;
    font.setPointSizeF(2 * font.pointSizeF());
    QApplication::setFont(font);
  }
  ~LargeText() override { QApplication::setFont(usual_); }

  static void expectNothingCut(QWidget& window, const std::string& what) {
    EXPECT_LE(window.width(), screenSize.width()) << what;
    EXPECT_LE(window.height(), screenSize.height()) << what;
    expectNone(CutTexts::in(window), what);
  }

 private:
  QFont usual_ = QApplication::font();
};

TEST_P(LargeText, OfTheControlIsNotCut) {
  lookAtPages(expectNothingCut);
}

TEST_P(LargeText, OfEachToolOfAListIsNotCut) {
  lookAtTools(expectNothingCut);
}

TEST_P(LargeText, OfEachWindowOfSnapshotsIsNotCut) {
  lookAtEvidence(expectNothingCut);
}

TEST_P(LargeText, OfEachDialogIsNotCut) {
  lookAtDialogs(expectNothingCut);
}

class TabKey : public EachWindow {
 protected:
  void expectAllReached(QWidget& window, const std::string& what) {
    // Keys go to the window in front, or to what is open over it.
    const QWidget* const taker =
        QApplication::activePopupWidget() != nullptr ? QApplication::activePopupWidget() : QApplication::activeWindow();
    if (taker != &window) return;
    ++looked_;
    EXPECT_GT(TabOrder::length(window), 0U) << what;
    expectNone(TabOrder::problems(window), what);
  }
  Look look() {
    return [this](QWidget& window, const std::string& what) { expectAllReached(window, what); };
  }

  int looked_ = 0;  ///< windows that had the keyboard
};

TEST_P(TabKey, VisitsEachElementOfThePages) {
  lookAtPages(look());
  EXPECT_EQ(looked_, 6);
}

TEST_P(TabKey, VisitsEachElementOfTheToolsOfAList) {
  lookAtTools(look());
  EXPECT_EQ(looked_, 8);
}

TEST_P(TabKey, VisitsEachElementOfTheWindowsOfSnapshots) {
  lookAtEvidence(look());
  EXPECT_EQ(looked_, 4);
}

TEST_P(TabKey, VisitsEachElementOfTheDialogs) {
  lookAtDialogs([this](QWidget& dialog, const std::string& what) {
    dialog.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog)) << what;
    expectAllReached(dialog, what);
  });
  EXPECT_EQ(looked_, 6);
}

const auto languages = testing::Values("0", "10000", "20000", "30000", "40000");
INSTANTIATE_TEST_SUITE_P(Languages, Accessibility, languages);
INSTANTIATE_TEST_SUITE_P(Languages, LargeText, languages);
INSTANTIATE_TEST_SUITE_P(Languages, TabKey, testing::Values("0"));

}  // namespace
}  // namespace korvel::test
