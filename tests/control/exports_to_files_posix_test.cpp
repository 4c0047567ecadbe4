// The text export and the exchange file on a full disk, and with a link in their place.
#include <cstdlib>

#include "tests/control/exports_fixture.h"
#include "tests/support/process_conditions_posix.h"

namespace korvel::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ui::MessageIcon;

TEST_F(TextExport, APlantedLinkIsReplacedAndNotFollowed) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  writeFileAtomically(folder / "precious", "kept");
  std::filesystem::create_symlink(folder / "precious", folder / "velview.txt");
  viewer->ExportNotepad();
  EXPECT_EQ(written("precious"), "kept");
  EXPECT_FALSE(std::filesystem::is_symlink(folder / "velview.txt"));
  EXPECT_EQ(written("velview.txt"), "A,B,C,\r\na,b,c\r\n");
}

TEST_F(TextExport, OnAFullDiskLeavesTheEarlierFileAndTheNextOneWorks) {
  const auto viewer = viewerWith(std::vector<std::array<std::string, 3>>(2500, {"a", "b", "c"}));
  writeFileAtomically(folder / "velview.txt", "earlier");
  {
    const test::FullDisk full(4096);
    viewer->ExportNotepad();
  }
  EXPECT_THAT(recorder->messages, ElementsAre(ShownMessage{MessageIcon::critical, QString(),
                                                           "61:Error in ExportNotpad.  Error Message: Disk full"}));
  EXPECT_EQ(written("velview.txt"), "earlier");
  EXPECT_EQ(filesInFolder(), 1);
  EXPECT_THAT(recorder->edited, IsEmpty());
  viewer->ExportNotepad();
  EXPECT_EQ(written("velview.txt").size(), 8 + 2500 * 7);
  EXPECT_FALSE(progressBar(*viewer)->isVisible());
}

TEST_F(SpreadsheetExport, OnAFullDiskLeavesTheEarlierFileAndTheNextOneWorks) {
  const auto viewer = viewerWith(std::vector<std::array<std::string, 3>>(2500, {"a", "b", "c"}));
  writeFileAtomically(folder / "velviewex.log", "earlier");
  {
    const test::FullDisk full(4096);
    viewer->ExportExcel();
  }
  EXPECT_THAT(recorder->messages, ElementsAre(ShownMessage{MessageIcon::critical, QString(),
                                                           "61:Error in ExportExcel.  Error Message: Disk full\r\n"
                                                           "Make sure Excel 10.0 or above is installed"}));
  EXPECT_EQ(written("velviewex.log"), "earlier");
  EXPECT_EQ(filesInFolder(), 1);
  viewer->ExportExcel();
  EXPECT_EQ(written("velviewex.log").size(), 8 + 2500 * 7);
}

/// An export with its manifest and sums.
class ProvenExport : public TextExport {
 protected:
  ProvenExport() { settings.values["ExportManifest"] = "1"; }
  /// What the program says of the sums.
  [[nodiscard]] int sumsAreRight() const {
    const std::string command = "cd '" + folder.path().string() + "' && sha256sum --check --strict --status *.sha256";
    return std::system(command.c_str());  // NOLINT(cert-env33-c,concurrency-mt-unsafe): of names that are ours
  }
};

TEST_F(ProvenExport, IsAcceptedBySha256sum) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  viewer->ExportNotepad();
  EXPECT_EQ(sumsAreRight(), 0);
  writeFileAtomically(folder / "velview.txt", written("velview.txt") + " ");
  EXPECT_NE(sumsAreRight(), 0);
}

TEST_F(ProvenExport, PlantedLinksAreReplacedAndNotFollowed) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  writeFileAtomically(folder / "precious", "kept");
  for (const char* const name : {"velview.txt", "velview.txt.manifest.json", "velview.txt.sha256"})
    std::filesystem::create_symlink(folder / "precious", folder / name);
  viewer->ExportNotepad();
  EXPECT_EQ(written("precious"), "kept");
  EXPECT_EQ(filesInFolder(), 4);
  EXPECT_EQ(sumsAreRight(), 0);
}

TEST_F(ProvenExport, OnAFullDiskLeavesAllThreeAsTheyWere) {
  const auto before = viewerWith({{"a", "b", "c"}});
  before->ExportNotepad();
  const std::string sums = written("velview.txt.sha256");
  const auto viewer = viewerWith(std::vector<std::array<std::string, 3>>(200, {"a", "b", "c"}));
  {
    // The file has room, its manifest has none.
    const test::FullDisk full(4096);
    viewer->ExportNotepad();
  }
  EXPECT_THAT(recorder->messages, ElementsAre(ShownMessage{MessageIcon::critical, QString(),
                                                           "61:Error in ExportNotpad.  Error Message: Disk full"}));
  EXPECT_EQ(written("velview.txt"), "A,B,C,\r\na,b,c\r\n");
  EXPECT_EQ(written("velview.txt.sha256"), sums);
  EXPECT_EQ(sumsAreRight(), 0);
  EXPECT_EQ(filesInFolder(), 3);
}

}  // namespace
}  // namespace korvel::test
