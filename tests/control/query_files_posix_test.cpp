// Names of query files that are not UTF-8.
#include "tests/control/query_files_fixture.h"

namespace korvel::test {
namespace {

TEST_F(QueryFiles, ANameThatIsNoTextIsOpened) {
  const auto viewer = customPage();
  writeFileAtomically(folder / "caf\xE9.vqf", "x");
  choose("caf\xE9.vqf");
  click(*viewer, "btOpen");
  EXPECT_EQ(editor(*viewer).queryText(), "x\r\n");
}

}  // namespace
}  // namespace korvel::test
