// Printing on a full disk, and whom the printed file is for.
#include <sys/stat.h>

#include "tests/control/printing_fixture.h"
#include "tests/support/full_disk.h"

namespace korvel::test {
namespace {

using control::MessageIcon;
using ::testing::ElementsAre;

TEST_F(Printing, OnAFullDiskLeavesTheEarlierFileAndTheNextOneWorks) {
  const auto viewer = viewerWith(std::vector<std::array<std::string, 3>>(200, {"a", "b", "c"}));
  writeWholeFile(folder / "printed.pdf", "earlier");
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

}  // namespace
}  // namespace korvel::test
