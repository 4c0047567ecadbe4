#include "evidence/verification.h"

#include <gmock/gmock.h>

#include <fstream>
#include <functional>

#include "base/error.h"
#include "base/paths.h"
#include "tests/evidence/proven_output.h"
#include "tests/support/temporary_folder.h"

namespace korvel::evidence {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Without waiting for the disk.
void overwrite(const std::filesystem::path& file, std::string_view bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

class VerifiedOutput : public testing::Test {
 protected:
  std::vector<std::string> findings() { return verifyOutput(file).findings; }
  std::string bytesOf(const std::filesystem::path& path) { return readFile(path); }
  /// The findings after the bytes of a file were changed; the file is as before then.
  std::vector<std::string> findingsAfter(const std::filesystem::path& path,
                                         const std::function<void(std::string&)>& change) {
    const std::string before = readFile(path);
    std::string after = before;
    change(after);
    overwrite(path, after);
    std::vector<std::string> found = findings();
    overwrite(path, before);
    return found;
  }

  test::TemporaryFolder folder;
  std::filesystem::path file = folder / "rows.csv";
};

TEST_F(VerifiedOutput, IsUnchanged) {
  for (const char* const format : {"csv", "json", "xlsx"}) {
    writeProven(file, numberedRows(5), format);
    EXPECT_THAT(findings(), IsEmpty());
    EXPECT_EQ(verifyOutput(file).name, "rows.csv");
  }
}

/// Every bit of each of the three files.
TEST_F(VerifiedOutput, IsChangedByASingleBit) {
  writeProven(file, numberedRows(3));
  std::size_t flips = 0;
  for (const auto& path : {file, manifestOf(file), sumsOf(file)}) {
    const std::string whole = readFile(path);
    for (std::size_t at = 0; at < whole.size(); ++at) {
      std::string changed = whole;
      changed[at] = static_cast<char>(changed[at] ^ (1 << at % 8));
      overwrite(path, changed);
      EXPECT_THAT(findings(), testing::Not(IsEmpty())) << path << ' ' << at;
      ++flips;
    }
    overwrite(path, whole);
  }
  EXPECT_GT(flips, 1000U);
  EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(VerifiedOutput, IsChangedWhereItIsCut) {
  writeProven(file, numberedRows(3));
  for (const auto& path : {file, manifestOf(file), sumsOf(file)}) {
    const std::size_t size = readFile(path).size();
    for (std::size_t left = 0; left < size; left += 7)
      EXPECT_THAT(findingsAfter(path, [&](std::string& bytes) { bytes.resize(left); }), testing::Not(IsEmpty()))
          << path << ' ' << left;
  }
}

/// One row changed, removed, inserted, swapped among 100,000 is named; workbooks have fewer, as they take longer to
/// write.
TEST_F(VerifiedOutput, NamesTheRowsThatDiffer) {
  const auto namesThem = [this](const char* format, std::size_t count) {
    const std::size_t half = count / 2;
    const std::vector<std::pair<std::function<void(TextRows&)>, std::string>> changes = {
        {[=](TextRows& all) { all[half - 1][2] = "1"; }, "row " + std::to_string(half) + " was changed"},
        {[=](TextRows& all) { all.erase(all.begin() + static_cast<std::ptrdiff_t>(half)); },
         "row " + std::to_string(half + 1) + " is missing"},
        {[](TextRows& all) { all.insert(all.begin() + 999, all[5]); }, "row 1000 was inserted"},
        {[=](TextRows& all) { std::swap(all[11], all[count - 2]); },
         "rows 12 and " + std::to_string(count - 1) + " were swapped"}};
    const TextRows rows = numberedRows(count);
    writeProven(file, rows, format);
    for (const auto& [change, text] : changes) {
      TextRows changed = rows;
      change(changed);
      RowRecorder ignored;
      overwrite(file, fileOf(changed, format, ignored));
      EXPECT_THAT(findings(), ElementsAre(HasSubstr("the file was changed"), text)) << format;
    }
  };
  namesThem("csv", 100'000);
  namesThem("json", 100'000);
  namesThem("xlsx", 10'000);
}

TEST_F(VerifiedOutput, TellsWhatSurroundsTheRowsApart) {
  writeProven(file, numberedRows(3));
  EXPECT_THAT(findingsAfter(file, [](std::string& bytes) { bytes.replace(bytes.find("Value"), 5, "Valid"); }),
              ElementsAre(HasSubstr("SHA-256 is another one"), "the names of its columns were changed",
                          "row 1 was changed", "row 2 was changed", "row 3 was changed"));
  EXPECT_THAT(findingsAfter(file, [](std::string& bytes) { bytes.replace(bytes.find("\n1,"), 3, "\n\"1\","); }),
              ElementsAre(HasSubstr("bytes instead of"), "its rows are the same; what surrounds them was changed"));
  EXPECT_THAT(findingsAfter(file, [](std::string& bytes) { bytes.resize(bytes.size() - 3); }),
              ElementsAre(HasSubstr("bytes instead of"), HasSubstr("does not end with CR LF; rows are compared"),
                          "row 3 is missing"));
}

TEST_F(VerifiedOutput, NamesTwentyOfManyRows) {
  writeProven(file, numberedRows(100));
  TextRows other = numberedRows(100);
  for (auto& row : other) row[1] = "x";
  RowRecorder ignored;
  overwrite(file, fileOf(other, "csv", ignored));
  const auto found = findings();
  ASSERT_THAT(found, testing::SizeIs(22));
  EXPECT_EQ(found.back(), "and 80 more rows differ");
}

TEST_F(VerifiedOutput, IsNotComparedWithAnotherManifest) {
  writeProven(file, numberedRows(3));
  const std::filesystem::path other = folder / "other.csv";
  std::filesystem::copy_file(file, other);
  EXPECT_THAT(verifyOutput(other).findings, ElementsAre(HasSubstr("other.csv.manifest.json is missing")));
  std::filesystem::copy_file(manifestOf(file), manifestOf(other));
  EXPECT_THAT(verifyOutput(other).findings,
              ElementsAre(HasSubstr("other.csv.sha256 is missing"), "the manifest is that of another file, rows.csv"));
  std::filesystem::remove(file);
  EXPECT_THAT(findings(), ElementsAre("the file is missing"));
  std::filesystem::create_directory(file);
  EXPECT_THAT(findings(), testing::SizeIs(1));
}

/// A manifest and sums that somebody made to match.
TEST_F(VerifiedOutput, RefusesManifestsThatAreNotOurs) {
  writeProven(file, numberedRows(3));
  const std::string manifest = readFile(manifestOf(file));
  const auto withManifest = [&](const std::string& from, const std::string& to) {
    std::string changed = manifest;
    EXPECT_NE(changed.find(from), std::string::npos) << from;
    changed.replace(changed.find(from), from.size(), to);
    overwrite(manifestOf(file), changed);
    overwrite(sumsOf(file),
              sumsText({{Sha256::of(readFile(file)), "rows.csv"}, {Sha256::of(changed), "rows.csv.manifest.json"}}));
    return findings();
  };
  EXPECT_THAT(withManifest("\"version\": 1", "\"version\": 2"), ElementsAre(HasSubstr("needs to be updated")));
  EXPECT_THAT(withManifest("\"version\": 1", "\"version\": \"1\""),
              ElementsAre("the manifest's \"version\" is not what a manifest has there"));
  for (const char* const version : {"0", "-1", "1.0", "true"})
    EXPECT_THAT(withManifest("\"version\": 1", std::string("\"version\": ") + version),
                ElementsAre("the manifest's \"version\" is not what a manifest has there"))
        << version;
  EXPECT_THAT(withManifest("\"version\": 1", "\"version\": 4294967297"), ElementsAre(HasSubstr("needs to be updated")));
  EXPECT_THAT(withManifest("\"version\": 1,", ""), ElementsAre("the manifest has no \"version\""));
  EXPECT_THAT(withManifest("korvel-audit-manifest", "another"), ElementsAre(HasSubstr("is no manifest")));
  for (const char* const name : {"../rows.csv", "/etc/hosts", "a\\\\b", "C:x", "..", ""})
    EXPECT_THAT(withManifest("\"name\": \"rows.csv\"", std::string("\"name\": \"") + name + "\""),
                ElementsAre(HasSubstr("names a file that is not in its own folder")))
        << name;
  EXPECT_THAT(withManifest("\"count\": 3", "\"count\": 4"), ElementsAre(HasSubstr("number of rows")));
  const std::string first = hexText(readManifest(manifest).rows.each.front());
  EXPECT_THAT(withManifest(first, std::string(64, '0')), ElementsAre(HasSubstr("digest of all rows")));
  EXPECT_THAT(withManifest(first, "xyz"), ElementsAre(HasSubstr("is no SHA-256 value")));
  EXPECT_THAT(withManifest(manifest, "[]"), ElementsAre(HasSubstr("is no manifest")));
  EXPECT_THAT(withManifest(manifest, manifest.substr(0, 100)), ElementsAre(HasSubstr("is no JSON")));
}

/// JSON of any depth is refused, not followed.
TEST_F(VerifiedOutput, RefusesDeepManifests) {
  writeProven(file, numberedRows(1));
  constexpr std::size_t depth = 1'000'000;
  for (const char* const name : {"output", "rows"})
    overwrite(manifestOf(file), R"({"format":"korvel-audit-manifest","version":1,")" + std::string(name) + R"(":)" +
                                    std::string(depth, '[') + std::string(depth, ']') + "}");
  EXPECT_THAT(findings(), testing::SizeIs(2));
}

TEST_F(VerifiedOutput, IsMissedInAFolderWithoutItsManifest) {
  writeProven(file, numberedRows(1));
  writeProven(folder / "b.csv", numberedRows(1));
  std::filesystem::remove(manifestOf(file));
  overwrite(folder / "foreign.sha256", hexText(Sha256::of("")) + "  something\n");
  EXPECT_THAT(outputsOf(folder.path()), ElementsAre(folder / "b.csv", file));
}

TEST_F(VerifiedOutput, HasFilesAndNothingElse) {
  for (const auto& path : {file, manifestOf(file), sumsOf(file)}) {
    writeProven(file, numberedRows(1));
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_THAT(findings(), ElementsAre(HasSubstr("is no file"))) << path;
    std::filesystem::remove(path);
  }
  writeProven(file, numberedRows(1));
  overwrite(sumsOf(file), std::string(100'000, 'x'));
  EXPECT_THAT(findings(), ElementsAre(HasSubstr("is too large")));
}

TEST_F(VerifiedOutput, MayHaveNoRows) {
  writeProven(file, {});
  EXPECT_THAT(findings(), IsEmpty());
  EXPECT_EQ(recordedRows(results::ResultList(results::RowFilling::whole)).digest, digestOfRows({}));
}

TEST_F(VerifiedOutput, IsNotJudgedWhileItIsReplaced) {
  writeProven(file, numberedRows(20'000));
  bool replaced = false;
  const Verification verified = verifyOutput(file, [&](std::uint64_t /*bytes*/) {
    if (!std::exchange(replaced, true)) overwrite(file, "other");
  });
  EXPECT_TRUE(replaced);
  EXPECT_THAT(verified.findings, ElementsAre(HasSubstr("was replaced or written to while it was read")));
}

TEST_F(VerifiedOutput, IsFoundByItsOtherNames) {
  writeProven(file, numberedRows(1));
  writeProven(folder / "a.json", numberedRows(1), "json");
  EXPECT_THAT(outputsOf(folder.path()), ElementsAre(folder / "a.json", file));
  EXPECT_THAT(outputsOf(manifestOf(file)), ElementsAre(file));
  EXPECT_THAT(outputsOf(sumsOf(file)), ElementsAre(file));
  EXPECT_THAT(outputsOf(file), ElementsAre(file));
}

/// Nothing appears, and what was there stays.
TEST_F(VerifiedOutput, AppearsTogetherWithItsManifestOrNotAtAll) {
  writeProven(file, numberedRows(2));
  const std::vector<std::string> before{readFile(file), readFile(manifestOf(file)), readFile(sumsOf(file))};
  {
    ProvenFile abandoned(file);
    abandoned.write("half");
  }
  std::filesystem::create_directory(folder / "other.csv.manifest.json");
  EXPECT_THROW(
      {
        ProvenFile refused(folder / "other.csv");
        refused.write("x");
        refused.commit({});
      },
      Error);
  EXPECT_EQ(before, (std::vector<std::string>{readFile(file), readFile(manifestOf(file)), readFile(sumsOf(file))}));
  std::size_t files = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path())) ++files;
  EXPECT_EQ(files, 4U);
}

}  // namespace
}  // namespace korvel::evidence
