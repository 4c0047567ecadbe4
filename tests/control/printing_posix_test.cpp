// Printing on a full disk; the rights, the pages and the contents of the printed file.
#include <sys/stat.h>

#include <QHeaderView>
#include <chrono>
#include <regex>

#include "control/texts.h"
#include "evidence/origin.h"
#include "tests/control/printing_fixture.h"
#include "tests/support/process_conditions_posix.h"
#include "tests/support/program_output.h"

namespace korvel::test {
namespace {

using control::libraryState;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ui::MessageIcon;

TEST_F(Printing, OnAFullDiskLeavesTheEarlierFileAndTheNextOneWorks) {
  const auto viewer = viewerWith(std::vector<std::array<std::string, 3>>(200, {"a", "b", "c"}));
  writeFileAtomically(folder / "printed.pdf", "earlier");
  click(*viewer, "btPrint");
  {
    const test::FullDisk full(4096);
    completeDocuments();
  }
  EXPECT_THAT(recorder->messages, ElementsAre(ShownMessage{MessageIcon::critical, QString(),
                                                           "61:Error in Printing.  Error Message: Disk full\r\n"
                                                           "Make sure Internet Explorer 6.0 or above is installed"}));
  EXPECT_EQ(printed(), "earlier");
  EXPECT_EQ(filesInFolder(), 2);  // the report and what was there before
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_EQ(printed().substr(0, 5), "%PDF-");
  EXPECT_EQ(printed().substr(printed().size() - 6), "%%EOF\n");
}

TEST_F(Printing, AFileIsReadableByWhomTheUsersMaskAllows) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  const mode_t before = ::umask(0027);
  click(*viewer, "btPrint");
  completeDocuments();
  ::umask(before);
  struct stat status {};
  ASSERT_EQ(::stat((folder / "printed.pdf").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

class PrintedPages : public Printing {
 protected:
  /// The print dialog is answered with a file, pages and copies.
  void choosePages(const char* ranges, int copies, bool collated) {
    const auto intoFile = recorder->onPrinter;
    recorder->onPrinter = [=](QPrinter& printer) {
      printer.setPrintRange(QPrinter::PageRange);
      printer.setPageRanges(QPageRanges::fromString(QLatin1String(ranges)));
      printer.setCopyCount(copies);
      printer.setCollateCopies(collated);
      return intoFile(printer);
    };
  }
  /// The numbers of the printed pages, in their order.
  [[nodiscard]] std::string printedNumbers() const {
    const std::string text = outputOf("pdftotext -raw '" + (folder / "printed.pdf").string() + "' -");
    static const std::regex mark("Page ([0-9]+) of [0-9]+");
    std::string numbers;
    for (std::sregex_iterator found(text.begin(), text.end(), mark), end; found != end; ++found)
      numbers += (*found)[1].str() + ' ';
    return numbers;
  }

  std::unique_ptr<AuditViewer> viewer = viewerWith(std::vector<std::array<std::string, 3>>(300, {"a", "b", "c"}));
};

TEST_F(PrintedPages, AreThoseThatWereChosen) {
  choosePages("2,4", 1, true);
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_EQ(printedNumbers(), "2 4 ");
}

TEST_F(PrintedPages, AreCopiedAsOftenAsWasChosen) {
  choosePages("2-3", 2, true);
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_EQ(printedNumbers(), "2 3 2 3 ");
}

TEST_F(PrintedPages, AreCopiedOneByOneWhereTheyAreNotCollated) {
  choosePages("2-3", 2, false);
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_EQ(printedNumbers(), "2 2 3 3 ");
}

TEST_F(PrintedPages, FromThePreviewAreThoseThatWereChosen) {
  choosePages("3", 2, true);
  recorder->printFromPreview = true;
  viewer->PreviewReport();
  completeDocuments();
  EXPECT_EQ(printedNumbers(), "3 3 ");
}

TEST_F(PrintedPages, ThatTheReportDoesNotHaveAreReportedAndAnEarlierFileStays) {
  writeFileAtomically(folder / "printed.pdf", "earlier");
  choosePages("50-60", 1, true);
  click(*viewer, "btPrint");
  completeDocuments();
  ASSERT_EQ(recorder->messages.size(), 1U);
  EXPECT_EQ(recorder->messages[0].icon, MessageIcon::information);
  EXPECT_EQ(recorder->messages[0].title, "KorvelAudit Viewer Message");
  EXPECT_TRUE(recorder->messages[0].text.startsWith("The report has no page of the chosen range: it ends with page "))
      << recorder->messages[0].text.toStdString();
  EXPECT_EQ(printed(), "earlier");
  EXPECT_EQ(filesInFolder(), 2);
}

TEST_F(Printing, TellsAtTheHeadOfThePagesWhetherAllWasLoaded) {
  const auto viewer = shownViewer();
  server.answer = nullptr;
  // As many rows as the procedure returns, whatever the dates: the table has them all.
  server.resultSets = {std::vector<CannedRow>(db::rowLimitPerResult, record("1", "CS"))};
  click(*viewer, "btQuery");
  const auto printedText = [&] {
    click(*viewer, "btPrint");
    completeDocuments();
    return test::outputOf("pdftotext -l 1 -raw '" + path("printed.pdf").toStdString() + "' -");
  };
  EXPECT_THAT(printedText(), ::testing::HasSubstr("INCOMPLETE: the limit of 5000 was reached in: ALL Audits"));
  server.answer = [this, calls = 0](db::ResultSink& sink) mutable {
    std::vector<db::Field> fields;
    for (const query::AuditColumn& column : query::auditColumns()) fields.push_back({std::string(column.name)});
    sink.beginResult(fields);
    // The whole answer and the one of a time without rows are cut; the table has no more rows.
    const std::size_t count = ++calls <= 3 ? db::rowLimitPerResult : 0;
    const CannedRow values = record("1", "CS");
    std::vector<db::Cell> cells;
    for (const std::string& value : values) cells.push_back({value, false});
    for (std::size_t i = 0; i < count; ++i) sink.row(cells);
    sink.endResult();
  };
  click(*viewer, "LoadAll");
  ASSERT_EQ(statusPanel(*viewer), "complete: 5000 records");
  EXPECT_THAT(printedText(), ::testing::HasSubstr("complete: completed beyond the limit of 5000 records"));
  EXPECT_THAT(printedText(), ::testing::Not(::testing::HasSubstr("INCOMPLETE")));
  libraryState().language = settings::LanguageOffset("10000");
  viewer->SwitchLanguage();
  EXPECT_THAT(printedText(), ::testing::HasSubstr("vollständig: über die Grenze von 5000 Datensätzen hinaus ergänzt"));
}

TEST_F(Printing, ReportsAlarmRowsOfAllDatesAtTheHeadOfThePages) {
  using namespace std::chrono;
  libraryState().dateRange = {2004y / 3 / 7, 2004y / 3 / 7, true};
  const auto viewer = shownViewer();
  node(*viewer, "Document Control")->setCheckState(0, Qt::Unchecked);
  server.answer = nullptr;
  server.resultSets = {{record("1", "CS"), record("2", "RT")}};
  click(*viewer, "btQuery");
  const std::string remark = control::ownText("query.alarmsOfAllDates").toStdString();
  const auto printedText = [&] {
    click(*viewer, "btPrint");
    completeDocuments();
    return test::outputOf("pdftotext -raw '" + path("printed.pdf").toStdString() + "' -");
  };
  EXPECT_NE(printedText().find(remark), std::string::npos);
  selectTab(*viewer, 2);
  EXPECT_EQ(printedText().find(remark), std::string::npos) << "no alarm row is on this page";
  selectTab(*viewer, 0);
  click(*viewer, "btClearDateRange");
  EXPECT_NE(printedText().find(remark), std::string::npos) << "it is about the rows that are shown";
  click(*viewer, "btQuery");
  EXPECT_EQ(printedText().find(remark), std::string::npos);
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(Printing, SaysAtTheHeadOfThePagesWhichRowsOfAFilteredListTheyHave) {
  const auto viewer = viewerWith({{"one", "x", "c"}, {"two", "y", "c"}, {"three", "x", "c"}});
  QTableView* view = list(*viewer, 5);
  view->setCurrentIndex(view->model()->index(0, 1));
  QTest::keyClick(view, Qt::Key_K, Qt::ControlModifier);
  const auto printedText = [&](std::size_t answer) {
    recorder->chosenAnswer = answer;
    click(*viewer, "btPrint");
    completeDocuments();
    return test::outputOf("pdftotext -raw '" + path("printed.pdf").toStdString() + "' -");
  };
  const std::string shown = printedText(0);
  EXPECT_NE(shown.find("Filtered: 2 of 3 records"), std::string::npos) << shown;
  EXPECT_EQ(shown.find("two"), std::string::npos);
  const std::string whole = printedText(1);
  EXPECT_NE(whole.find("Whole list: all 3 records"), std::string::npos) << whole;
  EXPECT_NE(whole.find("two"), std::string::npos);
}

/// What a reader of the printed file is shown, in the order of its lines.
class PrintedText : public Printing {
 protected:
  [[nodiscard]] std::string printedText(AuditViewer& viewer) {
    click(viewer, "btPrint");
    completeDocuments();
    return textOfFile();
  }
  [[nodiscard]] std::string textOfFile() const {
    return test::outputOf("pdftotext -layout '" + path("printed.pdf").toStdString() + "' - | tr -s ' \\n' ' '");
  }
};

TEST_F(PrintedText, HasTheCharactersThatTheReportsFileCannotHold) {
  const auto viewer = viewerWith({{"Małgorzata", "ポンプ", "c"}});
  const std::string text = printedText(*viewer);
  EXPECT_THAT(text, ::testing::HasSubstr("Małgorzata"));
  EXPECT_THAT(text, ::testing::HasSubstr("ポンプ"));
  EXPECT_THAT(written("report.htm"), ::testing::HasSubstr(">Ma?gorzata<"));
}

TEST_F(PrintedText, IsThatOfTheRowsThatTheReportWasWrittenFrom) {
  const auto viewer = viewerWith({{"first", "b", "c"}});
  click(*viewer, "btPrint");
  server.answer = [](db::ResultSink& sink) {
    const std::vector<db::Field> fields{{"Other"}};
    sink.beginResult(fields);
    const std::array<db::Cell, 1> cells{{{"second"}}};
    sink.row(cells);
    sink.endResult();
  };
  click(*viewer, "btQuery");
  completeDocuments();
  EXPECT_THAT(textOfFile(), ::testing::HasSubstr("first b c"));
  EXPECT_THAT(textOfFile(), ::testing::Not(::testing::HasSubstr("second")));
}

TEST_F(PrintedText, HasTheColumnsAsTheListShowsThemAndNamesThoseThatItHides) {
  const auto viewer = viewerWith({{"aaa", "bbb", "ccc"}});
  QTableView* view = list(*viewer, 5);
  EXPECT_THAT(printedText(*viewer), ::testing::HasSubstr("aaa bbb ccc"));
  EXPECT_THAT(printedText(*viewer), ::testing::Not(::testing::HasSubstr("left out")));
  view->horizontalHeader()->moveSection(2, 0);
  view->setColumnHidden(1, true);
  const std::string text = printedText(*viewer);
  EXPECT_THAT(text, ::testing::HasSubstr("ccc aaa"));
  EXPECT_THAT(text, ::testing::Not(::testing::HasSubstr("bbb")));
  EXPECT_THAT(text, ::testing::HasSubstr("Columns left out B"));
  EXPECT_THAT(written("report.htm"), ::testing::HasSubstr(">bbb<")) << "the file has all columns in their own order";
  for (int column = 0; column < 3; ++column) view->setColumnHidden(column, true);
  EXPECT_THAT(printedText(*viewer), ::testing::HasSubstr("aaa bbb ccc")) << "a page has columns";
}

TEST_F(PrintedText, HasWidthsThatTheUserChose) {
  const auto viewer = viewerWith({{"aaa", "bbb", "ccc"}});
  const auto leftOf = [&](const std::string& word) {
    click(*viewer, "btPrint");
    completeDocuments();
    const std::string boxes = test::outputOf("pdftotext -bbox '" + path("printed.pdf").toStdString() + "' -");
    const std::size_t box = boxes.rfind("xMin=\"", boxes.find(">" + word + "<"));
    return std::stod(boxes.substr(box + 6));
  };
  const double first = leftOf("aaa");
  EXPECT_NEAR(leftOf("ccc") - leftOf("bbb"), leftOf("bbb") - first, 3) << "as their contents need";
  QTableView* view = list(*viewer, 5);
  view->setColumnWidth(1, 4 * view->columnWidth(0));
  EXPECT_NEAR((leftOf("ccc") - leftOf("bbb")) / (leftOf("bbb") - first), 4, 0.1);
}

TEST_F(PrintedText, TellsWhereTheRowsComeFromAndWhoPrintedThem) {
  const auto viewer = viewerWith({{"one", "x", "c"}, {"two", "y", "c"}, {"three", "x", "c"}});
  QTableView* view = list(*viewer, 5);
  view->setCurrentIndex(view->model()->index(0, 1));
  QTest::keyClick(view, Qt::Key_K, Qt::ControlModifier);
  recorder->chosenAnswer = 0;
  std::string text = printedText(*viewer);
  for (const char* part : {"Audit trail ", "Query (SQL) ", "SHA-256 of the query ", "2 of 3 on these pages",
                           "Sorted by as answered", "Filtered: 2 of 3 records"})
    EXPECT_THAT(text, ::testing::HasSubstr(part));
  EXPECT_THAT(text, ::testing::ContainsRegex("Filters B *= *x"));
  EXPECT_THAT(text, ::testing::HasSubstr("User: " + evidence::systemUser()));
  EXPECT_THAT(text, ::testing::HasSubstr("KorvelAuditViewer " KORVEL_VERSION));
  recorder->chosenAnswer = 1;
  text = printedText(*viewer);
  EXPECT_THAT(text, ::testing::HasSubstr("Filters none"));
  EXPECT_THAT(text, ::testing::HasSubstr("Records 3 on these pages"));
  libraryState().language = settings::LanguageOffset("20000");
  viewer->SwitchLanguage();
  text = printedText(*viewer);
  EXPECT_THAT(text, ::testing::HasSubstr("Enregistrements 3 sur ces pages"));
  EXPECT_THAT(test::outputOf("pdfinfo -meta '" + path("printed.pdf").toStdString() + "'"),
              ::testing::HasSubstr("<rdf:li>fr</rdf:li>"));
}

TEST_F(PrintedText, OfAListThatWasNeverQueriedSaysNothingOfAnAnswer) {
  const auto viewer = shownViewer();
  const std::string text = printedText(*viewer);
  EXPECT_THAT(text, ::testing::HasSubstr("ALL Audits Audits"));
  EXPECT_THAT(text, ::testing::HasSubstr("KorvelAuditViewer " KORVEL_VERSION));
  for (const char* part : {"Query (SQL)", "Filters", "Completeness", "INCOMPLETE"})
    EXPECT_THAT(text, ::testing::Not(::testing::HasSubstr(part)));
}

}  // namespace
}  // namespace korvel::test
