// Files that the user gets, with a manifest beside them.
#include <QContextMenuEvent>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMenu>
#include <algorithm>

#include "control/filter_condition.h"
#include "db/procedure/audit_conditions.h"
#include "evidence/verification.h"
#include "tests/control/printing_fixture.h"

namespace korvel::test {
namespace {

using control::libraryState;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ManifestOutputs : public Printing {
 protected:
  ManifestOutputs() {
    recorder->chosenFolder = QString::fromStdString(utf8FromPath(folder.path()));
    server.identity = {"Engine 12", "PLANT\\reader"};
  }
  /// The entry of the menu of the list in front.
  static QAction* choice(const AuditViewer& viewer) {
    QTableView* view = list(viewer, element<QTabWidget>(viewer, "SSTab1")->currentIndex());
    const QPoint place = view->visualRect(view->model()->index(0, 0)).center();
    QContextMenuEvent rightClick(QContextMenuEvent::Mouse, place, view->viewport()->mapToGlobal(place));
    QApplication::sendEvent(view->viewport(), &rightClick);
    auto* menu = element<QMenu>(viewer, "SmartPopup");
    QAction* const last = menu->actions().last();
    menu->hide();
    return last;
  }
  /// A viewer whose user wants manifests.
  std::unique_ptr<AuditViewer> provingViewer(const std::vector<std::array<std::string, 3>>& rows) {
    settings.values["ExportManifest"] = "1";
    return viewerWith(rows);
  }
  [[nodiscard]] QJsonObject manifest(const std::string& name) const {
    return QJsonDocument::fromJson(QByteArray::fromStdString(written(name + ".manifest.json"))).object();
  }
  [[nodiscard]] std::vector<std::string> findings(const std::string& name) const {
    return evidence::verifyOutput(folder / pathFromUtf8(name)).findings;
  }
  static QStringList texts(const QJsonValue& array) {
    QStringList texts;
    for (const auto& each : array.toArray()) texts.append(each.toString());
    return texts;
  }
};

TEST_F(ManifestOutputs, AreChosenInTheMenuOfAListAndRemembered) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  QAction* const entry = choice(*viewer);
  EXPECT_EQ(entry->text(), "Manifest beside the file");
  EXPECT_TRUE(entry->isCheckable());
  EXPECT_FALSE(entry->isChecked());
  viewer->ExportNotepad();
  EXPECT_EQ(filesInFolder(), 1);
  EXPECT_EQ(statusPanel(*viewer), "Exported to " + path("velview.txt"));

  choice(*viewer)->trigger();
  EXPECT_EQ(settings.values["ExportManifest"], "1");
  EXPECT_TRUE(choice(*viewer)->isChecked());
  viewer->ExportNotepad();
  EXPECT_EQ(written("velview.txt"), "A,B,C,\r\na,b,c\r\n") << "the file is the same";
  EXPECT_EQ(filesInFolder(), 3);
  EXPECT_THAT(findings("velview.txt"), IsEmpty());
  EXPECT_EQ(statusPanel(*viewer), "Exported to " + path("velview.txt") + ". Manifest and SHA-256 sums stand beside it");

  libraryState().writesManifests = false;
  const auto next = viewerWith({{"a", "b", "c"}});
  EXPECT_TRUE(choice(*next)->isChecked()) << "the next program reads it";
  choice(*next)->trigger();
  EXPECT_EQ(settings.values["ExportManifest"], "0");
  EXPECT_THAT(recorder->messages, IsEmpty());
}

/// Administrators may have locked the store.
TEST_F(ManifestOutputs, AreChosenForTheProgramWhereNothingCanBeStored) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  QAction* const entry = choice(*viewer);
  settings.openFailure = Win32Error::accessDenied;
  entry->trigger();
  ASSERT_THAT(recorder->messages, SizeIs(1));
  EXPECT_TRUE(recorder->messages[0].text.contains("ChooseManifest"));
  viewer->ExportNotepad();
  EXPECT_THAT(findings("velview.txt"), IsEmpty());
}

TEST_F(ManifestOutputs, SayWhatWasAskedOfWhom) {
  const auto viewer = provingViewer({{"a", "b", "c"}, {"d", "e", "f"}});
  viewer->ExportExcel();
  EXPECT_EQ(written("velviewex.log"), "A|B|C|\r\na|b|c\r\nd|e|f\r\n");
  EXPECT_THAT(findings("velviewex.log"), IsEmpty());
  const QJsonObject told = manifest("velviewex.log");
  EXPECT_TRUE(told["program"].toString().startsWith("KorvelAuditViewer "));
  EXPECT_EQ(told["source"].toObject(),
            (QJsonObject{
                {"server", "S"}, {"database", "Korvel_Audit"}, {"engine", "Engine 12"}, {"login", "PLANT\\reader"}}));
  EXPECT_EQ(told["question"].toObject()["text"].toString().toStdString(), server.commands.back());
  EXPECT_FALSE(told["question"].toObject().contains("categories"));
  EXPECT_EQ(told["output"].toObject()["format"], "exchange");
  EXPECT_EQ(told["rows"].toObject()["count"], 2);
  EXPECT_EQ(texts(told["rows"].toObject()["columns"]), (QStringList{"A", "B", "C"}));
  EXPECT_FALSE(told.contains("complete"));
  for (const char* const moment : {"begun", "ended", "written"}) EXPECT_TRUE(told.contains(moment)) << moment;
}

TEST_F(ManifestOutputs, OfAStandardListSayWhereItWasCut) {
  settings.values["ExportManifest"] = "1";
  const auto viewer = shownViewer();
  viewer->UnselectALL();
  node(*viewer, "Configuration/Alarms")->setCheckState(0, Qt::Checked);
  node(*viewer, "Configuration/Tag Logging")->setCheckState(0, Qt::Checked);
  server.resultSets = {{record("2", "CS"), record("1", "CS")},
                       std::vector<CannedRow>(db::rowLimitPerResult, record("3", "RT"))};
  click(*viewer, "btQuery");
  selectTab(*viewer, 1);
  viewer->ExportNotepad();
  EXPECT_THAT(findings("velview.txt"), IsEmpty());
  const QJsonObject told = manifest("velview.txt");
  const QJsonObject question = told["question"].toObject();
  EXPECT_EQ(texts(question["categories"]), (QStringList{"Configuration / Alarms", "Configuration / Tag Logging"}));
  EXPECT_EQ(question["list"], "Configuration");
  EXPECT_EQ(question["beyondLimit"], false);
  EXPECT_EQ(question["text"].toString().toStdString(), server.commands.back());
  EXPECT_EQ(told["complete"], false);
  EXPECT_EQ(texts(told["limitReached"]), QStringList{"Configuration / Tag Logging"});
  EXPECT_TRUE(texts(told["notes"]).join('\n').contains("5000-row limit"));
  EXPECT_EQ(told["lists"].toArray()[0].toObject(), (QJsonObject{{"caption", "ALL Audits"}, {"rows", 5002}}));
  EXPECT_EQ(told["rows"].toObject()["count"], 2);
  EXPECT_EQ(told["rows"].toObject()["columns"].toArray().size(), 18) << "also those that the list shows empty";
}

TEST_F(ManifestOutputs, SayWhatWasFilteredAndHowItIsSorted) {
  const auto viewer = provingViewer({{"one", "x", "c"}, {"two", "y", "c"}, {"three", "x", "c"}});
  QTableView* view = list(*viewer, 5);
  view->setCurrentIndex(view->model()->index(0, 1));
  QTest::keyClick(view, Qt::Key_K, Qt::ControlModifier);
  ASSERT_EQ(view->model()->rowCount(), 2);
  recorder->chosenAnswer = 0;
  viewer->ExportNotepad();
  const QJsonObject shown = manifest("velview.txt");
  EXPECT_EQ(texts(shown["question"].toObject()["filters"]), QStringList{"B = \"x\""});
  EXPECT_EQ(texts(shown["notes"]), QStringList{"Filtered: 2 of 3 records"});
  EXPECT_EQ(shown["rows"].toObject()["count"], 2);
  EXPECT_EQ(shown["lists"].toArray()[0].toObject()["rows"], 3);
  EXPECT_TRUE(statusPanel(*viewer).endsWith("beside it. Filtered: 2 of 3 records"));
  recorder->chosenAnswer = 1;
  viewer->ExportNotepad();
  const QJsonObject whole = manifest("velview.txt");
  EXPECT_FALSE(whole["question"].toObject().contains("filters"));
  EXPECT_EQ(texts(whole["notes"]), QStringList{"Whole list: all 3 records, filters not applied"});
  EXPECT_EQ(whole["rows"].toObject()["count"], 3);
  EXPECT_THAT(findings("velview.txt"), IsEmpty());
}

TEST_F(ManifestOutputs, SayWhatTheFileCannotHold) {
  settings.values["Language"] = "10000";
  const auto viewer = provingViewer({{"\xE4\xB8\xAD", "b", "c"}});
  viewer->ExportNotepad();
  EXPECT_EQ(texts(manifest("velview.txt")["notes"]),
            QStringList{"Characters that the file cannot hold: 1; each is written as \"?\""});
  EXPECT_TRUE(statusPanel(*viewer).contains("Manifest und SHA-256-Summen stehen daneben"));
}

TEST_F(ManifestOutputs, StandBesideAPrintedFile) {
  const auto viewer = provingViewer({{"a", "b", "c"}, {"d", "e", "f"}});
  click(*viewer, "btPrint");
  // What is shown meanwhile does not count.
  click(*viewer, "btClear");
  completeDocuments();
  EXPECT_EQ(printed().substr(0, 5), "%PDF-");
  EXPECT_THAT(findings("printed.pdf"), IsEmpty());
  const QJsonObject told = manifest("printed.pdf");
  EXPECT_EQ(told["output"].toObject()["format"], "pdf");
  EXPECT_EQ(told["rows"].toObject()["count"], 2);
  EXPECT_EQ(filesInFolder(), 4) << "the report file is no output of the user's";
  EXPECT_EQ(statusPanel(*viewer), "Exported to " + path("printed.pdf") + ". Manifest and SHA-256 sums stand beside it");
}

TEST_F(ManifestOutputs, OfChosenPagesSaySo) {
  recorder->onPrinter = [this](QPrinter& printer) {
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path("printed.pdf"));
    printer.setPrintRange(QPrinter::PageRange);
    printer.setFromTo(2, 2);
    return true;
  };
  const auto viewer = provingViewer(std::vector<std::array<std::string, 3>>(300, {"a", "b", "c"}));
  click(*viewer, "btPrint");
  completeDocuments();
  ASSERT_EQ(texts(manifest("printed.pdf")["notes"]).size(), 1);
  EXPECT_TRUE(texts(manifest("printed.pdf")["notes"])[0].startsWith("pages 2 of "));
  EXPECT_TRUE(texts(manifest("printed.pdf")["notes"])[0].endsWith("; the rows are those of all pages"));
}

/// A list that no answer fills says so by having no question.
TEST_F(ManifestOutputs, AfterAFailedQueryHaveNoQuestion) {
  settings.values["ExportManifest"] = "1";
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_TRUE(manifest("printed.pdf").contains("question"));
  server.failure = Error(10054, "connection reset");
  click(*viewer, "btQuery");
  click(*viewer, "btPrint");
  completeDocuments();
  const QJsonObject told = manifest("printed.pdf");
  for (const char* const member : {"question", "begun", "complete", "lists"})
    EXPECT_FALSE(told.contains(member)) << member;
  EXPECT_TRUE(told.contains("written"));
  EXPECT_EQ(told["rows"].toObject()["count"], 0);
  EXPECT_THAT(findings("printed.pdf"), IsEmpty());
}

TEST_F(ManifestOutputs, OfAnAnswerWithoutRecordsHaveItsQuestion) {
  settings.values["ExportManifest"] = "1";
  const auto viewer = shownViewer();
  for (const int page : {0, 5}) {
    selectTab(*viewer, page);
    server.resultSets = {{}};
    click(*viewer, "btQuery");
    click(*viewer, "btPrint");
    completeDocuments();
    const QJsonObject told = manifest("printed.pdf");
    EXPECT_EQ(told["question"].toObject()["text"].toString().toStdString(), server.commands.back()) << page;
    EXPECT_EQ(told["lists"].toArray()[0].toObject()["rows"], 0) << page;
    EXPECT_EQ(told.contains("complete"), page == 0);
  }
}

TEST_F(ManifestOutputs, AppearWithTheirFileOrNotAtAll) {
  const auto viewer = provingViewer({{"a", "b", "c"}});
  std::filesystem::create_directory(folder / "velview.txt.sha256");
  viewer->ExportNotepad();
  ASSERT_THAT(recorder->messages, SizeIs(1));
  EXPECT_TRUE(recorder->messages[0].text.contains("Nothing was written: " + path("velview.txt.sha256")))
      << recorder->messages[0].text.toStdString();
  EXPECT_EQ(filesInFolder(), 1);
  EXPECT_THAT(recorder->edited, IsEmpty());
}

TEST(FilterText, SaysTheWholeCondition) {
  using control::ColumnFilter;
  EXPECT_EQ(control::filterText(ColumnFilter{{.values = {{"UPDATE"}}}, "Event"}), "Event = \"UPDATE\"");
  EXPECT_EQ(control::filterText(ColumnFilter{{.excludes = true, .values = {{"UPDATE"}, {"", true}, {""}}}, "Event"}),
            "Event not (= \"UPDATE\" or = null or = \"\")");
  EXPECT_EQ(control::filterText(ColumnFilter{{.beginnings = {"2004-03", "2004-05"}}, "Date Time"}),
            "Date Time begins with \"2004-03\" or begins with \"2004-05\"");
  EXPECT_EQ(control::filterText(ColumnFilter{{.range = results::TextRange{"2004-03-07", "2004-03-08"}}, "Date Time"}),
            "Date Time from \"2004-03-07\" to before \"2004-03-08\"");
  EXPECT_EQ(control::filterText(ColumnFilter{{.range = results::TextRange{"2004-03-07", ""}}, "Date Time"}),
            "Date Time from \"2004-03-07\"");
  const results::ResultList list(results::RowFilling::whole);
  EXPECT_EQ(control::filterText(*control::textFilter(list, {.text = "TIC"}, {})), "find \"TIC\"");
  EXPECT_EQ(
      control::filterText(*control::textFilter(list, {.text = "^T", .exactCase = true, .regularExpression = true}, {})),
      "find regular expression \"^T\" in exact case");
  EXPECT_EQ(control::filterText(*control::textFilter(list, {.text = "T", .wholeValue = true}, {})),
            "find whole value \"T\"");
  EXPECT_EQ(control::filterText(control::RecordFilter{{"exception.deletion", nullptr}}), "Deletions");
}

}  // namespace
}  // namespace korvel::test
