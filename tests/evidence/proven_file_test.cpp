// Three files that appear together or not at all.

#include "evidence/proven_file.h"

#include <gmock/gmock.h>

#include <map>
#include <regex>

#include "base/error.h"
#include "base/paths.h"
#include "evidence/verification.h"
#include "tests/evidence/proven_output.h"
#include "tests/support/temporary_folder.h"

namespace korvel::evidence {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ProvenFiles : public testing::Test {
 protected:
  using Content = std::map<std::string, std::string>;

  /// All files of the folder.
  Content content() {
    Content files;
    for (const auto& entry : fs::directory_iterator(folder.path()))
      files[utf8FromPath(entry.path().filename())] = fs::is_directory(entry) ? "a folder" : readFile(entry.path());
    return files;
  }
  void restore(const Content& files) {
    for (const auto& [name, bytes] : files) writeFileAtomically(folder / pathFromUtf8(name), bytes);
  }
  /// Another output, in whose way a folder comes when all is written.
  void failAt(const fs::path& place) {
    ProvenFile newer(file);
    newer.write("another output");
    fs::remove(place);
    fs::create_directories(place / "not empty");
    EXPECT_THROW(newer.commit({}), Error);
  }

  test::TemporaryFolder folder;
  fs::path file = folder / "rows.csv";
  const std::vector<fs::path> places{sumsOf(file), manifestOf(file), file};
};

/// Whichever of the three cannot be put in its place.
TEST_F(ProvenFiles, StayAsTheyWereWhereOneCannotBeReplaced) {
  for (const fs::path& place : places) {
    writeProven(file, numberedRows(3));
    Content before = content();
    failAt(place);
    before[utf8FromPath(place.filename())] = "a folder";
    EXPECT_EQ(content(), before) << place;
    fs::remove_all(place);
  }
}

TEST_F(ProvenFiles, AreAllMissingWhereOneCannotBeWritten) {
  for (const fs::path& place : places) {
    failAt(place);
    EXPECT_EQ(content(), (Content{{utf8FromPath(place.filename()), "a folder"}})) << place;
    fs::remove_all(place);
  }
}

/// The program ended between two of the steps; the outputs differ, or only what is said of them.
TEST_F(ProvenFiles, OfTwoOutputsAreNoticed) {
  for (const std::size_t rows : {std::size_t{3}, std::size_t{4}}) {
    writeProven(file, numberedRows(3));
    const Content older = content();
    RowRecorder recorder;
    ProvenFile newer(file);
    newer.write(fileOf(numberedRows(rows), "csv", recorder));
    Manifest manifest;
    manifest.source.server = "another";
    manifest.output.format = "csv";
    manifest.rows = recorder.take();
    newer.commit(manifest);
    EXPECT_THAT(verifyOutput(file).findings, IsEmpty());
    const Content whole = content();

    restore(older);
    restore({{"rows.csv.sha256", whole.at("rows.csv.sha256")}});
    ASSERT_FALSE(verifyOutput(file).isUnchanged());
    EXPECT_EQ(verifyOutput(file).findings[0],
              "the manifest was changed, or writing the files was interrupted: its SHA-256 is not the one in "
              "rows.csv.sha256");

    restore({{"rows.csv.manifest.json", whole.at("rows.csv.manifest.json")}});
    // The older output is the one that the newer manifest describes, byte for byte.
    if (rows == 3) {
      EXPECT_THAT(verifyOutput(file).findings, IsEmpty());
    } else {
      EXPECT_THAT(verifyOutput(file).findings,
                  ElementsAre(HasSubstr("the file was changed: it has"), "row 4 is missing"));
    }
  }
}

/// Programs before this one said neither when an output was written nor where the limit was reached.
TEST_F(ProvenFiles, OfEarlierProgramsAreAccepted) {
  writeProven(file, numberedRows(3));
  std::string manifest = readFile(manifestOf(file));
  const std::size_t begin = manifest.find("  \"written\"");
  ASSERT_NE(begin, std::string::npos);
  manifest.erase(begin, manifest.find('\n', begin) + 1 - begin);
  const std::size_t source = manifest.find("  \"source\"");
  ASSERT_NE(source, std::string::npos);
  manifest.insert(source, "  \"question\": { \"text\": \"\" },\n");
  writeFileAtomically(manifestOf(file), manifest);
  writeFileAtomically(sumsOf(file), sumsText({{Sha256::of(readFile(file)), "rows.csv"},
                                              {Sha256::of(manifest), "rows.csv.manifest.json"}}));
  EXPECT_THAT(verifyOutput(file).findings, IsEmpty());
}

TEST_F(ProvenFiles, SayWhenTheyWereWritten) {
  writeProven(file, numberedRows(1));
  const std::string manifest = readFile(manifestOf(file));
  EXPECT_TRUE(std::regex_search(manifest, std::regex("\"written\": \"[0-9-]+T[0-9:]+[+-]"))) << manifest;
}

}  // namespace
}  // namespace korvel::evidence
