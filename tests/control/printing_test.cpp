// The report from the print command to the printer: its file, the flags, the dialogs.
#include "output/pages/report_sheets.h"
#include "tests/control/printing_fixture.h"

namespace korvel::test {
namespace {

using control::libraryState;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ui::MessageIcon;

TEST_F(Printing, WritesTheReportAndThenAsksForThePrinter) {
  const auto viewer = viewerWith({{"a", "<b>", "c"}});
  click(*viewer, "btPrint");
  EXPECT_NE(written("report.htm").find("<p align=\"center\">Custom Audits</p>"), std::string::npos);
  EXPECT_NE(written("report.htm").find("<td width=\"100\" height=\"26\"><b></td>"), std::string::npos);
  EXPECT_EQ(recorder->printerDialogs, 0);
  EXPECT_TRUE(libraryState().pendingReport.print);
  completeDocuments();
  EXPECT_EQ(recorder->printerDialogs, 1);
  EXPECT_FALSE(libraryState().pendingReport.print);
  EXPECT_EQ(printed().substr(0, 5), "%PDF-");
  EXPECT_THAT(recorder->messages, IsEmpty());
  EXPECT_EQ(filesInFolder(), 2);  // no temporary file is left
}

TEST_F(Printing, ByMenuAndToolbar) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  choose(*viewer, "FILE/PRINT");
  completeDocuments();
  press(*viewer, "PRINT");
  completeDocuments();
  EXPECT_EQ(recorder->printerDialogs, 2);
}

TEST_F(Printing, AnEmptyListIsPrintedToo) {
  const auto viewer = shownViewer();
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_EQ(recorder->printerDialogs, 1);
  EXPECT_NE(written("report.htm").find("<p align=\"center\">ALL Audits Audits</p>"), std::string::npos);
  EXPECT_EQ(written("report.htm").find("<td"), std::string::npos);
  EXPECT_EQ(printed().substr(0, 5), "%PDF-");
}

TEST_F(Printing, TwiceOverwritesTheFileAndPrintsAgain) {
  const auto viewer = viewerWith({{"first", "b", "c"}});
  click(*viewer, "btPrint");
  completeDocuments();
  const auto again = viewerWith({{"second", "b", "c"}});
  click(*again, "btPrint");
  completeDocuments();
  EXPECT_EQ(recorder->printerDialogs, 2);
  EXPECT_EQ(written("report.htm").find("first"), std::string::npos);
  EXPECT_NE(written("report.htm").find("second"), std::string::npos);
}

TEST_F(Printing, AClickBeforeTheReportIsThereReplacesIt) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  click(*viewer, "btPrint");
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_EQ(recorder->printerDialogs, 1);
}

TEST_F(Printing, ACancelledPrintDialogPrintsNothing) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  recorder->onPrinter = nullptr;
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_EQ(recorder->printerDialogs, 1);
  EXPECT_FALSE(libraryState().pendingReport.print);
  EXPECT_FALSE(std::filesystem::exists(folder / "printed.pdf"));
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(Printing, TakesThePrintFont) {
  libraryState().printFont = {"Courier", 9.75};
  const auto viewer = shownViewer();
  // A new viewer resets it.
  click(*viewer, "btPrint");
  EXPECT_NE(written("report.htm").find("FONT:9P Courier"), std::string::npos);
  libraryState().printFont.size = 9.75;
  click(*viewer, "btPrint");
  EXPECT_NE(written("report.htm").find("FONT:9.75P Courier"), std::string::npos);
}

TEST_F(Printing, TakesItsPagesFromTheRowsWhateverBecomesOfTheFile) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  click(*viewer, "btPrint");
  writeFileAtomically(folder / "report.htm", "another program's");
  completeDocuments();
  EXPECT_EQ(recorder->printerDialogs, 1);
  viewer->PreviewReport();
  std::filesystem::remove(folder / "report.htm");
  completeDocuments();
  EXPECT_EQ(recorder->previewedPages, QList<int>{1});
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(Printing, AReportThatCannotBeWrittenIsReported) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  const EnvironmentVariable gone("windir", (folder / "gone").string());
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_THAT(recorder->messages,
              ElementsAre(ShownMessage{MessageIcon::critical, QString(),
                                       "76:Error in btPrint_Click.  Error Message: Path not found"}));
  EXPECT_EQ(recorder->printerDialogs, 0);
}

TEST_F(Printing, APrinterThatTakesNothingIsReportedAndAnOlderFileStays) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  writeFileAtomically(folder / "printed.pdf", "older");
  recorder->onPrinter = [this](QPrinter& printer) {
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path("gone/printed.pdf"));
    return true;
  };
  click(*viewer, "btPrint");
  completeDocuments();
  ASSERT_THAT(recorder->messages, SizeIs(1));
  EXPECT_TRUE(recorder->messages[0].text.startsWith("76:Error in Printing.  Error Message: Path not found\r\n"));
  EXPECT_EQ(printed(), "older");
  recorder->onPrinter = [this](QPrinter& printer) {
    printer.setOutputFileName(path("printed.pdf"));
    return true;
  };
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_EQ(printed().substr(0, 5), "%PDF-");
}

TEST_F(Printing, APrinterThatIsMissingIsReported) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  // Neither a printer of this machine nor a file.
  recorder->onPrinter = [](QPrinter& printer) {
    printer.setPrinterName("no such printer");
    printer.setOutputFileName(QString());
    return true;
  };
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_THAT(recorder->messages,
              ElementsAre(ShownMessage{MessageIcon::critical, QString(),
                                       "68:Error in Printing.  Error Message: Device unavailable\r\n"
                                       "Make sure Internet Explorer 6.0 or above is installed"}));
}

TEST_F(Printing, ThePreviewComesBeforeThePrinter) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  libraryState().pendingReport.preview = true;
  QStringList order;
  recorder->onPreview = [&](output::pages::ReportSheets&) { order << "preview"; };
  const auto printer = recorder->onPrinter;
  recorder->onPrinter = [&](QPrinter& chosen) {
    order << "print";
    return printer(chosen);
  };
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_EQ(order, (QStringList{"preview", "print"}));
  EXPECT_FALSE(libraryState().pendingReport.preview);
}

TEST_F(Printing, APreviewAlonePrintsOnlyWhereItIsWanted) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  viewer->PreviewReport();
  completeDocuments();
  EXPECT_EQ(recorder->previewedPages, QList<int>{1});
  EXPECT_EQ(recorder->printerDialogs, 0);
  recorder->printFromPreview = true;
  viewer->PreviewReport();
  completeDocuments();
  EXPECT_EQ(recorder->printerDialogs, 1);
}

TEST_F(Printing, AFileHasThePaperThatWasChosen) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  const auto intoFile = recorder->onPrinter;
  recorder->onPrinter = [&](QPrinter& printer) {
    printer.setPageSize(QPageSize(QPageSize::Letter));
    return intoFile(printer);
  };
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_NE(printed().find("/MediaBox [0 0 612"), std::string::npos);
}

TEST_F(Printing, AReportThatCouldNotBeWrittenIsNotMadeUpFor) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  {
    const EnvironmentVariable gone("windir", (folder / "gone").string());
    viewer->PreviewReport();
  }
  EXPECT_EQ(recorder->messages.size(), 1U);
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_THAT(recorder->previewedPages, IsEmpty());
  EXPECT_EQ(recorder->printerDialogs, 1);
  {
    const EnvironmentVariable gone("windir", (folder / "gone").string());
    click(*viewer, "btPrint");
  }
  viewer->PreviewReport();
  completeDocuments();
  EXPECT_EQ(recorder->previewedPages, QList<int>{1});
  EXPECT_EQ(recorder->printerDialogs, 1);
}

TEST_F(Printing, AReportThatDiesWithItsViewerIsNotMadeUpFor) {
  auto viewer = viewerWith({{"a", "b", "c"}});
  viewer->PreviewReport();
  viewer.reset();
  completeDocuments();
  EXPECT_FALSE(libraryState().pendingReport.preview);
}

TEST_F(Printing, AViewerMayDieBeforeItsReportIsThere) {
  auto viewer = viewerWith({{"a", "b", "c"}});
  click(*viewer, "btPrint");
  viewer.reset();
  completeDocuments();
  EXPECT_EQ(recorder->printerDialogs, 0);
}

TEST_F(Printing, AViewerMayDieInItsPrintDialog) {
  auto viewer = viewerWith({{"a", "b", "c"}});
  recorder->onPrinter = [&](QPrinter&) {
    viewer.reset();
    return true;
  };
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_FALSE(std::filesystem::exists(folder / "printed.pdf"));
}

}  // namespace
}  // namespace korvel::test
