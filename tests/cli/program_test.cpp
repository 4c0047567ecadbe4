#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "base/atomic_file.h"
#include "cli/messages.h"
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
  std::string out() { return readFile(folder / "out"); }
  std::string err() { return readFile(folder / "err"); }

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

TEST_F(Program, FullDiskBehindStandardOutputIsReported) {
  ASSERT_EQ(run("audit demo --rows 300"), exitDone) << err();
  EXPECT_EQ(run("audit query --format csv >/dev/full"), exitOutput);
  EXPECT_NE(err().find("cannot write standard output: No space left on device"), std::string::npos) << err();
  for (const char* command : {"databases --server '(embedded)'", "install-procedure --print"}) {
    EXPECT_EQ(run(std::string("audit ") + command + " >/dev/full"), exitOutput) << command;
    EXPECT_NE(err().find("cannot write standard output: No space left on device"), std::string::npos) << err();
  }
}

TEST_F(Program, AReaderThatLeavesIsNoFailure) {
  ASSERT_EQ(run("audit demo --rows 3000"), exitDone) << err();
  // The reader has closed the pipe before the first byte: the tool starts writing when it is closed.
  const auto leftAlone = [&](const std::string& command) {
    EXPECT_EQ(run("mkfifo gone; { read -r line <gone; " + command +
                  "; echo $? >status; } | { exec <&-; echo >gone; }; rm gone"),
              0)
        << command;
    EXPECT_EQ(readFile(folder / "status"), std::to_string(exitDone) + "\n") << command;
    EXPECT_EQ(err(), "") << command;
  };
  leftAlone("audit query --quiet --format json");
  leftAlone("audit query --quiet");
  leftAlone("audit sql 'select * from Korvel_Audit_Trails' --format csv");
  leftAlone("audit sql 'select * from Korvel_Audit_Trails' --format table");
  leftAlone("audit databases --server '(embedded)'");
  leftAlone("audit check --server '(embedded)'");
  leftAlone("audit install-procedure --print");
  leftAlone("audit demo --rows 10 --force");
}

constexpr const char* endless = "\"with recursive c(n) as (select 1 union all select n + 1 from c) select n from c\"";

TEST_F(Program, AnEndlessQueryEndsWithItsReader) {
  ASSERT_EQ(run("audit demo --rows 300"), exitDone) << err();
  EXPECT_EQ(run("{ audit sql " + std::string(endless) + " --format csv; echo $? >status; } | head -n 2"), 0);
  EXPECT_EQ(out(), "n\r\n1\r\n");
  EXPECT_EQ(readFile(folder / "status"), std::to_string(exitDone) + "\n");
  EXPECT_EQ(err(), "");
}

TEST_F(Program, AnEndlessQueryEndsOnASignal) {
  ASSERT_EQ(run("audit demo --rows 300"), exitDone) << err();
  // Once the first line is there, the query runs.
  EXPECT_EQ(run("mkfifo pipe; '" KORVEL_AUDIT_PROGRAM "' sql " + std::string(endless) +
                " --format csv >pipe & exec 3<pipe; read -r line <&3; kill -TERM $!; cat <&3 >rest; wait $!"),
            exitStopped);
  EXPECT_EQ(err(), "korvel-audit: stopped\n");
}

TEST_F(Program, RunsAQueryOfOnesOwn) {
  ASSERT_EQ(run("audit demo --rows 300"), exitDone) << err();
  EXPECT_EQ(run("audit sql 'select count(*) as n from Korvel_Audit_Trails' --format csv"), exitDone) << err();
  EXPECT_EQ(out(), "n\r\n300\r\n");
  EXPECT_EQ(run("audit sql 'delete from Korvel_Audit_Trails'"), exitDatabase);
  EXPECT_EQ(run("audit sql 'select Nr from Korvel_Audit_Trails where Nr < 0'"), exitNoRecords);
  EXPECT_EQ(run("printf 'select count(*) as n\\r\\n  from Korvel_Audit_Trails' >q.vqf; audit sql --file q.vqf --format "
                "exchange --output result; cat result"),
            0);
  EXPECT_EQ(out(), "n|\r\n300\r\n");
}

TEST_F(Program, AServerMayBeARelativePathOrADatabaseFile) {
  ASSERT_EQ(run("audit demo --rows 300"), exitDone) << err();
  const std::string count = " 'select count(*) as n from Korvel_Audit_Trails' --format csv";
  for (const char* server :
       {"./data", "data/", "./data/../data", "data/Korvel_Audit.db", "./data/Korvel_Audit_MU.db"}) {
    EXPECT_EQ(run("audit sql --server " + std::string(server) + count), exitDone) << server << err();
    EXPECT_EQ(out(), "n\r\n300\r\n") << server;
  }
  EXPECT_EQ(run("cd data; audit query --quiet --server . --format csv >/dev/null; audit databases --server ."), 0)
      << err();
  EXPECT_EQ(out(), "Korvel_Audit\t" + (folder / "data/Korvel_Audit.db").string() + "\nKorvel_Audit_MU\t" +
                       (folder / "data/Korvel_Audit_MU.db").string() + "\n");
  EXPECT_EQ(run("audit check --server data/Korvel_Audit_MU.db"), exitDone) << out();
  EXPECT_NE(out().find("Korvel_Audit_MU can be opened"), std::string::npos) << out();
}

}  // namespace
}  // namespace korvel::cli
