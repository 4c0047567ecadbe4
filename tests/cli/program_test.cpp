#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "base/whole_file.h"
#include "cli/exit_status.h"
#include "tests/support/temporary_folder.h"

namespace korvel::cli {
namespace {

/// Runs the built program in a shell; standard output and error go to files unless the line says otherwise.
struct Program : testing::Test {
  int run(const std::string& line) {
    const std::string command = "export KORVEL_AUDIT_DATA='" + (folder / "data").string() + "'\n" +
                                "audit() { '" KORVEL_AUDIT_PROGRAM "' \"$@\"; }\n" + "cd '" + folder.path().string() +
                                "'\n{ " + line + "\n} >out 2>err";
    const int result = std::system(command.c_str());  // NOLINT(cert-env33-c,concurrency-mt-unsafe)
    return WIFEXITED(result) ? WEXITSTATUS(result) : -1;
  }
  std::string out() { return readWholeFile(folder / "out"); }
  std::string err() { return readWholeFile(folder / "err"); }

  test::TemporaryFolder folder;
};

TEST_F(Program, EndsWithTheStatusOfItsRun) {
  EXPECT_EQ(run("audit query"), exitDatabase);
  EXPECT_NE(err().find("korvel-audit: database error "), std::string::npos) << err();
  EXPECT_EQ(run("audit demo --rows 300"), exitDone) << err();
  EXPECT_EQ(run("audit query --format csv"), exitDone) << err();
  EXPECT_EQ(out().rfind("Nr,DateTime,", 0), 0U);
  EXPECT_EQ(run("audit query --category R1 --from 1999-01-01 --to 1999-01-01"), exitNoRecords);
  EXPECT_EQ(run("audit query --list 9"), exitWrongUsage);
  EXPECT_EQ(run("audit --version"), exitDone);
}

TEST_F(Program, FullDiskBehindStandardOutputIsSaid) {
  ASSERT_EQ(run("audit demo --rows 300"), exitDone) << err();
  EXPECT_EQ(run("audit query --format csv >/dev/full"), exitOutput);
  EXPECT_NE(err().find("cannot write standard output: No space left on device"), std::string::npos) << err();
}

TEST_F(Program, ReaderThatGoesAwayIsSaid) {
  ASSERT_EQ(run("audit demo --rows 3000"), exitDone) << err();
  EXPECT_EQ(run("{ audit query --format json; echo $? >status; } | true"), 0);
  EXPECT_EQ(readWholeFile(folder / "status"), std::to_string(exitOutput) + "\n");
  EXPECT_NE(err().find("cannot write standard output"), std::string::npos) << err();
}

}  // namespace
}  // namespace korvel::cli
