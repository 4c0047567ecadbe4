// What we write is what sha256sum checks.

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/evidence/proven_output.h"
#include "tests/support/temporary_folder.h"

namespace korvel::evidence {
namespace {

int check(const std::filesystem::path& folder, const std::string& sums) {
  const std::string command = "cd '" + folder.string() + "' && sha256sum --check --strict --status '" + sums + "'";
  return std::system(command.c_str());  // NOLINT(cert-env33-c,concurrency-mt-unsafe): of names that are ours
}

TEST(Sha256sum, AcceptsOurSums) {
  const test::TemporaryFolder folder;
  for (const char* const name : {"rows.csv", "two words ü.csv", "back\\slash\nline.csv"}) {
    const std::filesystem::path file = folder / name;
    writeProven(file, numberedRows(3));
    EXPECT_EQ(check(folder.path(), std::string(name) + ".sha256"), 0) << name;
    writeFileAtomically(file, readFile(file) + "x");
    EXPECT_NE(check(folder.path(), std::string(name) + ".sha256"), 0) << name;
    writeProven(file, numberedRows(3));
    writeFileAtomically(manifestOf(file), readFile(manifestOf(file)) + "\n");
    EXPECT_NE(check(folder.path(), std::string(name) + ".sha256"), 0) << name;
  }
}

}  // namespace
}  // namespace korvel::evidence
