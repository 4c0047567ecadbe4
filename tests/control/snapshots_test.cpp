// Snapshots and comparisons in the viewer.
#include <gmock/gmock.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

#include "base/atomic_file.h"
#include "control/forms/comparison_form.h"
#include "control/forms/comparison_view.h"
#include "control/forms/snapshot_form.h"
#include "db/open_connection.h"
#include "db/worker.h"
#include "evidence/bag.h"
#include "evidence/snapshot_reader.h"
#include "tests/control/viewer_fixture.h"
#include "tests/db/audit_database.h"
#include "tests/support/temporary_folder.h"
#include "ui/texts.h"

namespace korvel::test {
namespace {

using control::ComparisonForm;
using control::ComparisonView;
using control::SnapshotForm;
using testing::HasSubstr;
using testing::StartsWith;

constexpr int rowCount = 12000;
constexpr int patience = 20'000;

std::string allRows() {
  return ui::countText(rowCount).toStdString();
}

/// Gives some rows, and then none and no end until it is stopped.
class StuckConnection final : public db::Connection {
 public:
  explicit StuckConnection(std::unique_ptr<db::Connection> connection) : connection_(std::move(connection)) {}
  void execute(std::string_view text, db::ResultSink& sink) override { connection_->execute(text, sink); }
  void select(const db::AuditSelection& selection, db::ResultSink& sink) override {
    if (selection.columns != db::AuditSelection::Columns::all) return connection_->select(selection, sink);
    class Stuck final : public db::ResultSink {
     public:
      explicit Stuck(db::ResultSink& rows) : rows_(rows) {}
      void beginResult(std::span<const db::Field> fields) override { rows_.beginResult(fields); }
      bool row(std::span<const db::Cell> cells) override {
        if (--left_ > 0) return rows_.row(cells);
        while (rows_.shouldContinue()) std::this_thread::yield();
        return false;
      }
      void endResult() override {}
      bool shouldContinue() override { return rows_.shouldContinue(); }

     private:
      db::ResultSink& rows_;
      int left_ = 10000;
    };
    Stuck stuck(sink);
    connection_->select(selection, stuck);
  }
  [[nodiscard]] db::ServerIdentity identity() const override { return connection_->identity(); }

 private:
  std::unique_ptr<db::Connection> connection_;
};

class Snapshots : public ViewerTest {
 protected:
  Snapshots() {
    std::vector<AuditEntry> entries;
    for (int i = 1; i <= rowCount; ++i) entries.push_back({i, "2004-03-07 00:00:00.000", "UATable", "UPDATE", "CS"});
    std::filesystem::create_directories(folder / "plant");
    writeAuditDatabase(trail, entries);
    control::platform().connect = [this](std::string_view text,
                                         const std::stop_token& stop) -> std::unique_ptr<db::Connection> {
      auto connection = db::openConnection(text, stop);
      if (!isStuck) return connection;
      return std::make_unique<StuckConnection>(std::move(connection));
    };
    viewer = newViewer();
    viewer->resize(900, 600);
    viewer->show();
    viewer->setDefaultSQLServer(QString::fromStdU16String((folder / "plant").u16string()));
    viewer->OpenDefaultSQLServer();
  }

  SnapshotForm& snapshotForm() {
    viewer->TakeSnapshot();
    return *element<SnapshotForm>(*viewer, "frmSnapshot");
  }
  template <typename Element>
  static Element& part(const QWidget& form, const char* name) {
    return *form.findChild<Element*>(QLatin1String(name));
  }
  static std::string said(const QWidget& form) { return part<QLabel>(form, "lblState").text().toStdString(); }
  [[nodiscard]] QString taken() const { return QString::fromStdU16String((folder / "taken").u16string()); }
  /// Takes a snapshot, and waits for its end.
  void take(SnapshotForm& form) {
    part<QLineEdit>(form, "txtFolder").setText(taken());
    part<QPushButton>(form, "btTake").click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !form.isTaking(); }, patience));
  }
  ComparisonForm& comparisonForm() {
    viewer->CompareWithSnapshot();
    return *element<ComparisonForm>(*viewer, "frmComparison");
  }
  ComparisonView* comparisonView() { return viewer->findChild<ComparisonView*>(QStringLiteral("frmComparisonResult")); }
  void change(const std::string& sql) const { DatabaseWriter(trail).run(sql); }

  TemporaryFolder folder;
  std::filesystem::path trail = folder / "plant" / "Korvel_Audit.db";
  std::atomic<bool> isStuck = false;
  std::unique_ptr<AuditViewer> viewer;
};

TEST_F(Snapshots, AreTakenAndOpenedInTheViewerWhichSaysWhatTheyAre) {
  EXPECT_EQ(viewer->SnapshotText(), "");
  SnapshotForm& form = snapshotForm();
  EXPECT_FALSE(part<QPushButton>(form, "btTake").isEnabled()) << "without a folder";
  take(form);
  EXPECT_THAT(said(form), StartsWith("Rows: " + allRows() + ". Digest: "));
  EXPECT_THAT(said(form), HasSubstr("taken"));
  ASSERT_TRUE(part<QPushButton>(form, "btOpen").isVisible());
  const QSignalSpy selected(viewer.get(), &AuditViewer::DatabaseSelected);
  const QSignalSpy known(viewer.get(), &AuditViewer::SnapshotTextChanged);
  part<QPushButton>(form, "btOpen").click();
  EXPECT_FALSE(form.isVisible());
  ASSERT_EQ(selected.size(), 1);
  EXPECT_THAT(selected[0][0].toString().toStdString(), HasSubstr("taken - [Korvel_Audit]"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return known.size() > 0; }, patience));
  EXPECT_THAT(viewer->SnapshotText().toStdString(), StartsWith("Snapshot of Korvel_Audit on "));
  EXPECT_THAT(statusPanel(*viewer).toStdString(), HasSubstr("Snapshot of Korvel_Audit on "));
  // Another database is none.
  viewer->OpenDefaultSQLServer();
  EXPECT_EQ(viewer->SnapshotText(), "");
  EXPECT_THAT(statusPanel(*viewer).toStdString(), testing::Not(HasSubstr("Snapshot")));
}

TEST_F(Snapshots, AreStoppedAndContinued) {
  SnapshotForm& form = snapshotForm();
  isStuck = true;
  part<QLineEdit>(form, "txtFolder").setText(taken());
  part<QPushButton>(form, "btTake").click();
  EXPECT_TRUE(form.isTaking());
  EXPECT_FALSE(part<QLineEdit>(form, "txtFolder").isEnabled());
  ASSERT_TRUE(
      QTest::qWaitFor([&] { return said(form).find(" of " + allRows() + " rows") != std::string::npos; }, patience));
  viewer->TriggerQuery();  // the window can be used meanwhile
  EXPECT_TRUE(form.isTaking());
  part<QPushButton>(form, "btStop").click();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !form.isTaking(); }, patience));
  EXPECT_THAT(said(form), StartsWith("Stopped. "));
  EXPECT_FALSE(part<QPushButton>(form, "btOpen").isVisible());
  isStuck = false;
  viewer->TakeSnapshot();
  EXPECT_TRUE(QTest::qWaitFor([&] { return said(form).find("will be continued") != std::string::npos; }, patience));
  take(form);
  EXPECT_THAT(said(form), HasSubstr("Continued after "));
}

TEST_F(Snapshots, GoOnBehindTheClosedDialogAndEndWithTheControl) {
  SnapshotForm& form = snapshotForm();
  isStuck = true;
  part<QLineEdit>(form, "txtFolder").setText(taken());
  part<QPushButton>(form, "btTake").click();
  form.reject();
  EXPECT_TRUE(form.isTaking());
  viewer->TakeSnapshot();
  EXPECT_TRUE(form.isVisible());
  EXPECT_TRUE(part<QPushButton>(form, "btStop").isVisible());
  viewer.reset();
  // A worker that was left behind still writes into the folder.
  EXPECT_TRUE(QTest::qWaitFor([] { return !db::hasAbandonedWorkers(); }, patience));
}

TEST_F(Snapshots, OfADateRangeAndAsABagAreOffered) {
  change("UPDATE Korvel_Audit_Trails SET DateTime = '2004-03-09 12:00:00.000' WHERE Nr > 11900");
  {
    SnapshotForm& form = snapshotForm();
    EXPECT_FALSE(part<QRadioButton>(form, "optRange").isEnabled());
    form.reject();
  }
  using namespace std::chrono;
  control::libraryState().dateRange = {2004y / 3 / 8, 2004y / 3 / 9, true};
  SnapshotForm& form = snapshotForm();
  EXPECT_TRUE(part<QRadioButton>(form, "optRange").isChecked());
  EXPECT_THAT(part<QRadioButton>(form, "optRange").text().toStdString(), HasSubstr("2004-03-08 to 2004-03-09"));
  part<QCheckBox>(form, "chkBag").setChecked(true);
  take(form);
  EXPECT_THAT(said(form), StartsWith("Rows: 100. "));
  EXPECT_TRUE(evidence::isBagWith(folder / "taken", folder / "taken" / "data" / "Korvel_Audit.db"));
}

TEST_F(Snapshots, ThatFailSaySoInTheLanguageOfTheWindow) {
  take(snapshotForm());
  control::libraryState().language = settings::LanguageOffset("10000");
  SnapshotForm& form = snapshotForm();
  EXPECT_EQ(form.windowTitle(), "Schnappschuss aufnehmen");
  take(form);
  EXPECT_THAT(said(form), StartsWith("Ein Schnappschuss ersetzt "));
}

TEST_F(Snapshots, NeedADatabase) {
  control::libraryState().connection = {};
  viewer->TakeSnapshot();
  ASSERT_EQ(recorder->messages.size(), 1U);
  EXPECT_EQ(recorder->messages[0].text, "Select a database first.");
}

TEST_F(Snapshots, AreComparedAndDifferencesShownWithTheirValues) {
  take(snapshotForm());
  change(
      "UPDATE Korvel_Audit_Trails SET NewValue = 'x' WHERE Nr = 1000; DELETE FROM Korvel_Audit_Trails WHERE Nr = 7; "
      "UPDATE Korvel_Audit_Trails SET UserName = 'user 2' WHERE Nr = 2000");
  ComparisonForm& form = comparisonForm();
  recorder->chosenFile = taken() + "/Korvel_Audit.db";
  part<QPushButton>(form, "btBrowse").click();
  EXPECT_EQ(recorder->fileUses.back(), ui::ChosenFile::read);
  auto& facts = part<QLabel>(form, "lblFacts");
  ASSERT_TRUE(QTest::qWaitFor([&] { return !facts.text().isEmpty(); }, patience));
  EXPECT_THAT(facts.text().toStdString(), StartsWith("Snapshot of Korvel_Audit on "));
  part<QPushButton>(form, "btCompare").click();
  ASSERT_TRUE(QTest::qWaitFor([&] { return comparisonView() != nullptr && comparisonView()->isVisible(); }, patience))
      << said(form);
  EXPECT_FALSE(form.isVisible());
  ComparisonView& view = *comparisonView();
  EXPECT_THAT(part<QLabel>(view, "lblSummary").text().toStdString(),
              StartsWith("DIFFERENT: 2 changed, 1 removed; rows in the snapshot: " + allRows() +
                         "\n"
                         "In the trail by itself: "));
  auto& table = part<QTableView>(view, "lvDifferences");
  ASSERT_EQ(table.model()->rowCount(), 4);
  EXPECT_EQ(table.model()->index(0, 0).data().toString(), "removed");
  auto& before = part<QPlainTextEdit>(view, "txtBefore");
  auto& now = part<QPlainTextEdit>(view, "txtNow");
  EXPECT_THAT(before.toPlainText().toStdString(), HasSubstr("TableName: UATable"));
  EXPECT_EQ(now.toPlainText(), "");
  EXPECT_EQ(now.placeholderText(), "The row is no longer in the trail.");
  table.selectRow(2);
  EXPECT_EQ(before.toPlainText(), "user");
  EXPECT_EQ(now.toPlainText(), "user 2");
  EXPECT_THAT(part<QLabel>(view, "lblNote").text().toStdString(), StartsWith("Characters that differ are marked"));
}

TEST_F(Snapshots, ComparedWithAnEqualTrailSayThatOnlyNewerRowsCame) {
  take(snapshotForm());
  change("INSERT INTO Korvel_Audit_Trails (Nr) VALUES (12001)");
  ComparisonForm& form = comparisonForm();
  // A folder means the snapshot in it.
  part<QLineEdit>(form, "txtFile").setText(taken());
  part<QRadioButton>(form, "optOwn").setChecked(true);
  part<QPushButton>(form, "btCompare").click();
  ASSERT_TRUE(QTest::qWaitFor([&] { return comparisonView() != nullptr && comparisonView()->isVisible(); }, patience))
      << said(form);
  EXPECT_THAT(part<QLabel>(*comparisonView(), "lblSummary").text().toStdString(),
              testing::AllOf(StartsWith("UNCHANGED: "), HasSubstr("\n1 row is newer")));
}

TEST_F(Snapshots, ReportsOfComparisonsAreSaved) {
  take(snapshotForm());
  change("DELETE FROM Korvel_Audit_Trails WHERE Nr = 7");
  ComparisonForm& form = comparisonForm();
  part<QLineEdit>(form, "txtFile").setText(taken());
  part<QPushButton>(form, "btCompare").click();
  ASSERT_TRUE(QTest::qWaitFor([&] { return comparisonView() != nullptr && comparisonView()->isVisible(); }, patience));
  const auto saved = [&](const char* name) {
    const std::filesystem::path file = folder / name;
    recorder->chosenFile = QString::fromStdU16String(file.u16string());
    part<QPushButton>(*comparisonView(), "btSave").click();
    return readFile(file);
  };
  EXPECT_THAT(saved("report.pdf"), StartsWith("%PDF"));
  EXPECT_THAT(saved("report.json"), HasSubstr("\"kind\": \"removed\""));
  EXPECT_THAT(saved("report.csv"), HasSubstr("removed,7,TableName,UATable,"));
  EXPECT_EQ(recorder->fileUses.back(), ui::ChosenFile::written);
  EXPECT_THAT(statusPanel(*viewer).toStdString(), HasSubstr("report.csv has been written."));
}

TEST_F(Snapshots, ThatCannotBeComparedSayWhy) {
  ComparisonForm& form = comparisonForm();
  auto& file = part<QLineEdit>(form, "txtFile");
  const auto refused = [&](const std::filesystem::path& path) {
    file.setText(QString::fromStdU16String(path.u16string()));
    part<QPushButton>(form, "btCompare").click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !form.isComparing(); }, patience));
    return said(form);
  };
  EXPECT_THAT(refused(trail), HasSubstr("is a database, and no snapshot"));
  std::ofstream(folder / "x.db", std::ios::binary) << std::string(5000, 'x');
  EXPECT_THAT(refused(folder / "x.db"), HasSubstr("is cut or damaged"));
  std::filesystem::create_directory(folder / "empty");
  EXPECT_THAT(refused(folder / "empty"), StartsWith("There is no snapshot in "));
}

TEST_F(Snapshots, ComparisonsAreStopped) {
  take(snapshotForm());
  ComparisonForm& form = comparisonForm();
  isStuck = true;
  part<QLineEdit>(form, "txtFile").setText(taken());
  part<QPushButton>(form, "btCompare").click();
  ASSERT_TRUE(QTest::qWaitFor([&] { return said(form).starts_with("Rows compared: "); }, patience)) << said(form);
  part<QPushButton>(form, "btStop").click();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !form.isComparing(); }, patience));
  EXPECT_EQ(said(form), "The comparison was stopped.");
  EXPECT_EQ(comparisonView(), nullptr);
}

}  // namespace
}  // namespace korvel::test
