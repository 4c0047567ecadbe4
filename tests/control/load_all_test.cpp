// Beyond the limit of an answer: the button and the key that load the rest of it.
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPushButton>

#include "base/atomic_file.h"
#include "base/paths.h"
#include "control/texts.h"
#include "db/procedure/audit_conditions.h"
#include "query/date_slices.h"
#include "tests/control/custom_page_fixture.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {
namespace {

using namespace std::chrono_literals;
using control::ownText;
using query::Minute;
using ::testing::IsEmpty;

class LoadAll : public CustomPage {
 protected:
  static constexpr int rows = 12000;

  LoadAll() {
    server.answer = [this](db::ResultSink& sink) { answerCall(sink); };
  }

  /// The procedure over a row every five minutes.
  void answerCall(db::ResultSink& sink) {
    ++calls;
    if (beforeAnswer) beforeAnswer(sink);
    const std::string& text = server.commands.back();
    // The last three of the quoted values: whether there are dates, from, to.
    const auto value = [&](int fromEnd) {
      std::size_t end = text.size() - 1;
      for (int i = 0; i < fromEnd; ++i) end = text.rfind("','", end - 1);
      const std::size_t begin = text.rfind('\'', end - 1) + 1;
      return text.substr(begin, end - begin);
    };
    const bool hasDates = value(2) == "True";
    const bool isSelect = text.starts_with("SELECT");  // of rows without a date: there are none
    begin(sink, {"Nr", "DateTime", "TableName", "AuditType"});
    std::size_t count = 0;
    for (int i = 0; i < rows && count < db::rowLimitPerResult && !isSelect; ++i) {
      const std::string time = query::minuteText(first + 5min * i) + ":30.000";
      if (hasDates && (time < value(1) || time > value(0))) continue;
      row(sink, {std::to_string(i + 1), time, "Screen", i % 3 == 0 ? "CS" : "OA"});
      ++count;
    }
    sink.endResult();
  }
  /// The manifest of the list in front.
  QJsonObject exportedManifest(AuditViewer& viewer) const {
    const TemporaryFolder folder;
    const EnvironmentVariable windir("windir", utf8FromPath(folder.path()));
    control::libraryState().writesManifests = true;
    viewer.ExportNotepad();
    return QJsonDocument::fromJson(QByteArray::fromStdString(readFile(folder / "velview.txt.manifest.json"))).object();
  }
  static QPushButton& button(const AuditViewer& viewer) { return *element<QPushButton>(viewer, "LoadAll"); }
  std::unique_ptr<AuditViewer> cutAnswer() {
    auto viewer = shownViewer();
    click(*viewer, "btQuery");
    EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), 5000);
    return viewer;
  }

  const Minute first = std::chrono::sys_days(2004y / 3 / 1);
  int calls = 0;
  std::function<void(db::ResultSink&)> beforeAnswer;
  const std::vector<std::vector<CannedRow>> nothing;
};

TEST_F(LoadAll, IsOfferedWhereAnAnswerIsCut) {
  const auto viewer = shownViewer();
  EXPECT_FALSE(button(*viewer).isVisible());
  click(*viewer, "btQuery");
  EXPECT_TRUE(button(*viewer).isVisible());
  EXPECT_EQ(button(*viewer).text(), "Load all");
  EXPECT_EQ(button(*viewer).toolTip(), "Load the records beyond the limit too (Ctrl+Shift+L)");
  EXPECT_TRUE(statusPanel(*viewer).contains("\"Load all\" (Ctrl+Shift+L)")) << statusPanel(*viewer).toStdString();
  selectTab(*viewer, 5);
  EXPECT_FALSE(button(*viewer).isVisible()) << "custom queries have no limit";
  EXPECT_EQ(statusPanel(*viewer), "");
  selectTab(*viewer, 1);
  EXPECT_TRUE(button(*viewer).isVisible());
  click(*viewer, "btClear");
  EXPECT_FALSE(button(*viewer).isVisible());
}

TEST_F(LoadAll, ShowsEveryRecordAndSaysThatTheAnswerIsComplete) {
  const auto viewer = cutAnswer();
  button(*viewer).click();
  EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), rows);
  EXPECT_EQ(list(*viewer, 1)->model()->rowCount(), rows / 3);
  EXPECT_EQ(recordsPanel(*viewer), "12000 Records on current tab");
  EXPECT_TRUE(statusPanel(*viewer).startsWith("complete: 12000 records from ")) << statusPanel(*viewer).toStdString();
  EXPECT_FALSE(button(*viewer).isVisible());
  EXPECT_EQ(recorder->pointers.back(), ui::Pointer::standard);
  EXPECT_THAT(recorder->messages, IsEmpty());
  // Sorted by the entry number, as after a query.
  EXPECT_EQ(list(*viewer, 0)->model()->index(0, 0).data().toString(), "1");
  EXPECT_EQ(list(*viewer, 0)->model()->index(rows - 1, 0).data().toString(), "12000");

  click(*viewer, "btQuery");
  EXPECT_EQ(statusPanel(*viewer), ownText("status.rowLimit")) << "the next query knows nothing of it";
}

TEST_F(LoadAll, IsInTheManifestOfWhatIsExportedAfterwards) {
  const auto viewer = cutAnswer();
  const QJsonObject cut = exportedManifest(*viewer);
  EXPECT_EQ(cut["complete"], false);
  EXPECT_EQ(cut["limitReached"].toArray(), QJsonArray{"ALL Audits"});
  EXPECT_EQ(cut["question"].toObject()["beyondLimit"], false);
  button(*viewer).click();
  const QJsonObject whole = exportedManifest(*viewer);
  EXPECT_EQ(whole["complete"], true);
  EXPECT_FALSE(whole.contains("limitReached"));
  EXPECT_EQ(whole["question"].toObject()["beyondLimit"], true);
  EXPECT_EQ(whole["question"].toObject()["text"], cut["question"].toObject()["text"]);
  EXPECT_EQ(whole["lists"].toArray()[0].toObject()["rows"], rows);
  EXPECT_EQ(whole["rows"].toObject()["count"], rows);
  EXPECT_TRUE(whole["notes"].toArray()[0].toString().startsWith("complete: 12000 records from "));
}

TEST_F(LoadAll, KeepsTheFiltersOfAnAnswerOfWhichMoreComes) {
  const auto viewer = cutAnswer();
  QTableView* view = list(*viewer, 0);
  view->setCurrentIndex(view->model()->index(70, 1));
  QTest::keyClick(view, Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(column(*viewer, 0), "71");
  button(*viewer).click();
  EXPECT_EQ(column(*viewer, 0), "71");
  EXPECT_EQ(recordsPanel(*viewer), "1 Records on current tab");
  EXPECT_EQ(list(*viewer, 0)->parentWidget()->findChild<QLabel*>("ShownCount")->text(),
            ownText("filter.shown").arg("1", ui::countText(rows)));
  // What is said of the answer is said of all of it.
  EXPECT_TRUE(statusPanel(*viewer).startsWith("complete: 12000 records from ")) << statusPanel(*viewer).toStdString();
}

TEST_F(LoadAll, SaysHowItCameOutInTheCurrentLanguage) {
  const auto viewer = cutAnswer();
  button(*viewer).click();
  EXPECT_TRUE(statusPanel(*viewer).startsWith("complete: 12000 records from "));
  control::libraryState().language = settings::LanguageOffset("10000");
  viewer->SwitchLanguage();
  EXPECT_TRUE(statusPanel(*viewer).startsWith(QString::fromUtf8("vollständig: 12000 Datensätze aus ")))
      << statusPanel(*viewer).toStdString();
}

TEST_F(LoadAll, SaysWhyItFailedInTheCurrentLanguage) {
  const auto viewer = cutAnswer();
  beforeAnswer = [&](db::ResultSink&) {
    if (calls > 4) throw Error(10054, "Connection reset by peer");
  };
  button(*viewer).click();
  control::libraryState().language = settings::LanguageOffset("10000");
  viewer->SwitchLanguage();
  EXPECT_TRUE(statusPanel(*viewer).startsWith(QString::fromUtf8("Nicht alle Datensätze konnten geladen werden")))
      << statusPanel(*viewer).toStdString();
}

TEST_F(LoadAll, HasAKey) {
  const auto viewer = cutAnswer();
  viewer->activateWindow();
  QTest::keyClick(viewer.get(), Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), rows);
  const int before = calls;
  QTest::keyClick(viewer.get(), Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(calls, before) << "there is nothing more to load";
}

TEST_F(LoadAll, FinishesTheAnswerThatIsShownWhateverIsTickedNow) {
  const auto viewer = cutAnswer();
  click(*viewer, "btUnselectALL");
  button(*viewer).click();
  EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), rows);
}

TEST_F(LoadAll, TellsItsProgressWhileTheCutAnswerIsStillShown) {
  const auto viewer = cutAnswer();
  QStringList seen;
  int shown = 0;
  beforeAnswer = [&](db::ResultSink&) {
    if (calls != 5) return;
    onWindowThread([&] {
      seen.append(statusPanel(*viewer));
      shown = list(*viewer, 0)->model()->rowCount();
    });
  };
  button(*viewer).click();
  ASSERT_EQ(seen.size(), 1);
  EXPECT_TRUE(seen[0].startsWith("Loading all: ")) << seen[0].toStdString();
  EXPECT_EQ(shown, 5000);
}

class StoppedLoadAll : public LoadAll {
 protected:
  /// Escape while a call waits, after others have brought rows.
  void stopMeanwhile(AuditViewer& viewer) {
    beforeAnswer = [&](db::ResultSink& sink) {
      if (calls != 6) return;
      onWindowThread([&] { postKey(&viewer, Qt::Key_Escape); });
      EXPECT_TRUE(waitUntilUnwanted(sink));
    };
    button(viewer).click();
    beforeAnswer = nullptr;
  }
  static void postKey(QWidget* receiver, int key) {
    QCoreApplication::postEvent(receiver, new QKeyEvent(QEvent::KeyPress, key, Qt::NoModifier));
    QCoreApplication::postEvent(receiver, new QKeyEvent(QEvent::KeyRelease, key, Qt::NoModifier));
  }
};

TEST_F(StoppedLoadAll, LeavesTheListsAsTheyWere) {
  const auto viewer = cutAnswer();
  recorder->confirmed = false;
  stopMeanwhile(*viewer);
  ASSERT_EQ(recorder->questions.size(), 1);
  EXPECT_TRUE(recorder->questions[0].second.startsWith("Loading was stopped. Keep the "))
      << recorder->questions[0].second.toStdString();
  EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), 5000);
  EXPECT_EQ(statusPanel(*viewer), ownText("status.rowLimit"));
  EXPECT_TRUE(button(*viewer).isVisible());
}

TEST_F(StoppedLoadAll, KeepsWhatHasComeMarkedAsIncomplete) {
  const auto viewer = cutAnswer();
  recorder->confirmed = true;
  stopMeanwhile(*viewer);
  const int kept = list(*viewer, 0)->model()->rowCount();
  EXPECT_GT(kept, 0);
  EXPECT_LT(kept, rows);
  EXPECT_EQ(statusPanel(*viewer), QString("incomplete: %1 records. stopped before the end").arg(kept));
  EXPECT_TRUE(button(*viewer).isVisible()) << "it may be begun again";
  const QJsonObject told = exportedManifest(*viewer);
  EXPECT_EQ(told["complete"], false);
  EXPECT_EQ(told["limitReached"].toArray(), QJsonArray{"ALL Audits"});
  EXPECT_EQ(told["question"].toObject()["beyondLimit"], true);
  EXPECT_EQ(told["notes"].toArray()[1], "stopped before the end");
  button(*viewer).click();
  EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), rows);
}

TEST_F(LoadAll, LeavesTheListsAsTheyWereWhereTheServerFails) {
  const auto viewer = cutAnswer();
  beforeAnswer = [&](db::ResultSink&) {
    if (calls > 4) throw Error(10054, "Connection reset by peer");
  };
  button(*viewer).click();
  EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), 5000);
  EXPECT_EQ(lastFailure(*viewer), "10054:Connection reset by peer");
  EXPECT_TRUE(
      statusPanel(*viewer).startsWith("Not all records could be loaded; the lists stay as they were. Connection"))
      << statusPanel(*viewer).toStdString();
  EXPECT_THAT(recorder->messages, IsEmpty());
  EXPECT_TRUE(button(*viewer).isVisible());
}

TEST_F(LoadAll, SurvivesTheEndOfTheControl) {
  auto viewer = cutAnswer();
  beforeAnswer = [&](db::ResultSink& sink) {
    if (calls != 5) return;
    onWindowThread([&] { viewer.reset(); });
    EXPECT_TRUE(waitUntilUnwanted(sink));
  };
  button(*viewer).click();
  EXPECT_EQ(viewer, nullptr);
}

TEST_F(LoadAll, ShowsNothingWhereTheTrailWasEmptied) {
  const auto viewer = cutAnswer();
  server.answer = [this](db::ResultSink& sink) {
    begin(sink, {"Nr", "DateTime", "TableName", "AuditType"});
    sink.endResult();
  };
  button(*viewer).click();
  EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), 0);
  EXPECT_EQ(lastFailure(*viewer), "");
  EXPECT_FALSE(button(*viewer).isVisible());
}

TEST_F(LoadAll, DoesNotFillListsThatWereClearedMeanwhile) {
  const auto viewer = cutAnswer();
  beforeAnswer = [&](db::ResultSink&) {
    if (calls == 5) onWindowThread([&] { element<QAbstractButton>(*viewer, "btClear")->click(); });
  };
  button(*viewer).click();
  EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), 0);
}

TEST_F(LoadAll, IsLockedWithTheQueryButton) {
  const auto viewer = cutAnswer();
  viewer->LockControls();
  EXPECT_FALSE(button(*viewer).isEnabled());
  const int before = calls;
  viewer->activateWindow();
  QTest::keyClick(viewer.get(), Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(calls, before);
  viewer->UnlockControls();
  EXPECT_TRUE(button(*viewer).isEnabled());
}

TEST_F(LoadAll, HasNoKeyOnTheCustomPage) {
  const auto viewer = cutAnswer();
  selectTab(*viewer, 5);
  const int before = calls;
  viewer->activateWindow();
  QTest::keyClick(viewer.get(), Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(calls, before);
}

TEST_F(LoadAll, IsNotOfferedInTheMiddleOfAQuery) {
  const auto viewer = cutAnswer();
  bool offered = true;
  beforeAnswer = [&](db::ResultSink&) { onWindowThread([&] { offered = button(*viewer).isVisible(); }); };
  click(*viewer, "btQuery");
  EXPECT_FALSE(offered);
}

}  // namespace
}  // namespace korvel::test
