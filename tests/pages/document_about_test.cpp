// The properties of a written document.
#include "output/pages/document_about.h"

#include <gmock/gmock.h>

#include "tests/pages/written_pages.h"

namespace korvel::output::pages {
namespace {

using test::filledList;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

struct WrittenDocument : WrittenPages {
  /// The document's properties as a reader shows them.
  std::string properties(const std::string& options = {}) {
    return test::outputOf("pdfinfo -isodates " + options + " '" + (folder / "pages.pdf").string() + "'");
  }
  /// What a checker of the format says.
  std::string checked() { return test::outputOf("qpdf --check '" + (folder / "pages.pdf").string() + "' 2>&1"); }
};

TEST_F(WrittenDocument, HasTitleProgramAndTimeInAnyCase) {
  write(filledList({{"A"}}, {{"a"}}));
  const std::string about = properties();
  EXPECT_THAT(about, ContainsRegex("Title: +KorvelAudit Report\n"));
  EXPECT_THAT(about, ContainsRegex("Creator: +KorvelAudit Viewer\n"));
  EXPECT_THAT(about, ContainsRegex("CreationDate: +20"));
  EXPECT_THAT(about, Not(HasSubstr("Author")));
  EXPECT_THAT(checked(), HasSubstr("No syntax or stream encoding errors found"));
}

TEST_F(WrittenDocument, SaysWhoMadeItWhenAndWhetherItIsComplete) {
  texts.head.about = {"Report: <Małgorzata> & Co", "anna", "korvel-audit 1.2.3",
                      "2026-11-22T16:05:03+01:00", "de",   "INCOMPLETE: the limit\nof 5,000"};
  write(filledList({{"A"}}, numberedRows(200, 1)));
  const std::string about = properties();
  EXPECT_THAT(about, ContainsRegex("Title: +Report: <Małgorzata> & Co\n"));
  EXPECT_THAT(about, ContainsRegex("Subject: +INCOMPLETE: the limit\\\\nof 5,000\n"));
  EXPECT_THAT(about, ContainsRegex("Author: +anna\n"));
  EXPECT_THAT(about, ContainsRegex("Creator: +korvel-audit 1.2.3\n"));
  EXPECT_THAT(about, ContainsRegex("CreationDate: +2026-11-22T16:05:03[+]01\n"));
  // Metadata and properties agree, as PDF/A asks for.
  const std::string metadata = properties("-meta");
  for (const char* part : {">Report: &lt;Małgorzata&gt; &amp; Co<", ">anna<", "xmp:CreatorTool=\"korvel-audit 1.2.3\"",
                           "xmp:CreateDate=\"2026-11-22T16:05:03+01:00\"", ">INCOMPLETE: the limit\\nof 5,000<",
                           "<dc:language><rdf:Bag><rdf:li>de</rdf:li>"})
    EXPECT_THAT(metadata, HasSubstr(part));
  EXPECT_THAT(metadata, HasSubstr("pdf:Producer=\"Qt "));
  EXPECT_THAT(about, ContainsRegex("Producer: +Qt "));
  EXPECT_THAT(readFile(folder / "pages.pdf"), HasSubstr("/Lang <FEFF00640065>"));
  EXPECT_THAT(checked(), HasSubstr("No syntax or stream encoding errors found"));
  EXPECT_THAT(test::outputOf("pdftotext -raw '" + (folder / "pages.pdf").string() + "' -"), HasSubstr("N199E"));
}

/// PDF/A-1b, which archives ask for.
TEST_F(WrittenDocument, CanBeArchived) {
  write(filledList({{"A"}}, {{"Małgorzata ポンプ"}}));
  const std::string bytes = readFile(folder / "pages.pdf");
  EXPECT_THAT(bytes, HasSubstr("pdfaid:part=\"1\""));
  EXPECT_THAT(bytes, HasSubstr("pdfaid:conformance=\"B\""));
  EXPECT_THAT(bytes, HasSubstr("/OutputIntents"));
  // The sixth column from the end of each line: whether the font is embedded.
  const std::string embedded =
      "pdffonts '" + (folder / "pages.pdf").string() + "' | tail -n +3 | awk '{print $(NF-4)}'";
  const std::string fonts = test::outputOf(embedded);
  EXPECT_THAT(fonts, ContainsRegex("^(yes\n)+$"));
}

TEST(PropertiesUpdate, LeavesADocumentOfAnotherFormAlone) {
  const DocumentAbout about{"T", "a", "c", "2026-11-22T16:05:03+01:00", "en", ""};
  const std::string catalog = "%PDF-1.4\n1 0 obj\n<<\n>>\nendobj\n5 0 obj\n<<\n/Type /Catalog\n>>\nendobj\n";
  const std::string trailer =
      "trailer\n<<\n/Size 9\n/Info 1 0 R\n/Root 5 0 R\n/ID [ <00> <00> ]\n>>\nstartxref\n77\n%%EOF\n";
  const auto update = propertiesUpdate(catalog, trailer, 1000, about);
  ASSERT_TRUE(update);
  EXPECT_THAT(*update, HasSubstr("/Type /Catalog"));
  EXPECT_THAT(*update, HasSubstr("/Prev 77\n/ID [ <00> <00> ]"));
  EXPECT_THAT(*update, HasSubstr("/CreationDate (D:20261122160503+01'00')"));
  EXPECT_FALSE(propertiesUpdate("%PDF-1.4\n", trailer, 1000, about));
  for (const char* part : {"trailer", "/Size", "/Info", "/Root", "/ID", "startxref"}) {
    std::string without = trailer;
    without.replace(without.find(part), std::string(part).size(), "x");
    EXPECT_FALSE(propertiesUpdate(catalog, without, 1000, about)) << part;
  }
}

}  // namespace
}  // namespace korvel::output::pages
