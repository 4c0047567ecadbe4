#include "evidence/review_file.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <thread>

#include "base/atomic_file.h"
#include "evidence/origin.h"
#include "tests/db/audit_database.h"
#include "tests/support/temporary_folder.h"

namespace korvel::evidence {
namespace {

using std::chrono::milliseconds;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const ReviewedTrail trail = {"a server", "D"};

NewMark markOf(std::int64_t number, MarkKind kind = MarkKind::reviewed, const std::string& comment = {}) {
  return {number, Sha256::of("row " + std::to_string(number)), kind, comment};
}

class Review : public testing::Test {
 protected:
  [[nodiscard]] std::filesystem::path file() const { return folder / "batch 7.review"; }
  void create() const { ReviewFile::create(file(), trail, "a program 1.2"); }
  [[nodiscard]] std::vector<ReviewMark> marks() const {
    return ReviewFile(file(), trail, ReviewFile::Use::read).takeNewMarks();
  }
  /// The sentence of a failure to open the file and read its marks.
  [[nodiscard]] std::string failure(ReviewFile::Use use = ReviewFile::Use::read) const {
    try {
      (void)ReviewFile(file(), trail, use, milliseconds{1}).takeNewMarks();
    } catch (const Error& error) {
      return error.description();
    }
    return {};
  }

  test::TemporaryFolder folder;
};

TEST_F(Review, GivesMarksBackInTheirOrder) {
  create();
  ReviewFile review(file(), trail, ReviewFile::Use::mark);
  EXPECT_THAT(review.takeNewMarks(), IsEmpty());
  review.add(std::vector<NewMark>{markOf(7), markOf(3, MarkKind::question, "Why Małgorzata?")});
  review.add(std::vector<NewMark>{{std::nullopt, Sha256::of("no number"), MarkKind::comment, "a remark"}});
  const auto found = marks();
  ASSERT_THAT(found, SizeIs(3));
  EXPECT_EQ(found[0].place, 1);
  EXPECT_EQ(found[0].number, 7);
  EXPECT_EQ(found[0].row, Sha256::of("row 7"));
  EXPECT_EQ(found[0].kind, MarkKind::reviewed);
  EXPECT_EQ(found[0].user, systemUser());
  EXPECT_EQ(found[0].computer, computerName());
  EXPECT_THAT(found[0].time, testing::StartsWith("20"));
  EXPECT_EQ(found[1].kind, MarkKind::question);
  EXPECT_EQ(found[1].comment, "Why Małgorzata?");
  EXPECT_EQ(found[2].number, std::nullopt);
  EXPECT_EQ(found[2].kind, MarkKind::comment);
  EXPECT_EQ(found[2].place, 3);
}

TEST_F(Review, SaysWhatItIsOf) {
  create();
  const ReviewFile review(file(), std::nullopt, ReviewFile::Use::read);
  EXPECT_EQ(review.facts().trail.server, "a server");
  EXPECT_EQ(review.facts().trail.database, "D");
  EXPECT_EQ(review.facts().user, systemUser());
  EXPECT_EQ(review.facts().program, "a program 1.2");
}

TEST_F(Review, ReplacesNoFile) {
  writeFileAtomically(file(), "somebody's work");
  EXPECT_THROW(create(), Error);
  EXPECT_EQ(readFile(file()), "somebody's work");
}

TEST_F(Review, LeavesNoFileWhereNoneCanBeWritten) {
  EXPECT_THROW(ReviewFile::create(folder / "no folder" / "r", trail, "a program"), Error);
  EXPECT_FALSE(std::filesystem::exists(folder / "no folder"));
}

TEST_F(Review, TakesEachMarkOnce) {
  create();
  ReviewFile review(file(), trail, ReviewFile::Use::mark);
  review.add(std::vector<NewMark>{markOf(1)});
  EXPECT_THAT(review.takeNewMarks(), SizeIs(1));
  EXPECT_THAT(review.takeNewMarks(), IsEmpty());
  ReviewFile other(file(), trail, ReviewFile::Use::mark);
  other.add(std::vector<NewMark>{markOf(2)});
  EXPECT_THAT(review.takeNewMarks(), ElementsAre(Field(&ReviewMark::number, 2)));
  EXPECT_THAT(other.takeNewMarks(), SizeIs(2));
  EXPECT_EQ(review.lastDigest(), other.lastDigest());
}

TEST_F(Review, IsContinuedWhereAnotherObjectStopped) {
  create();
  ReviewFile first(file(), trail, ReviewFile::Use::mark);
  first.add(std::vector<NewMark>{markOf(1), markOf(2)});
  (void)first.takeNewMarks();
  first.add(std::vector<NewMark>{markOf(3)});
  ReviewFile second(file(), trail, ReviewFile::Use::read);
  second.continueAfter(first.position());
  EXPECT_THAT(second.takeNewMarks(), ElementsAre(Field(&ReviewMark::number, 3)));
  ReviewFile fresh(file(), trail, ReviewFile::Use::read);
  fresh.continueAfter({});
  EXPECT_THAT(fresh.takeNewMarks(), SizeIs(3));
}

TEST_F(Review, IsNotContinuedInAnotherFile) {
  create();
  ReviewFile first(file(), trail, ReviewFile::Use::mark);
  first.add(std::vector<NewMark>{markOf(1)});
  (void)first.takeNewMarks();
  const ReviewPosition position = first.position();
  ReviewFile::create(folder / "other", trail, "a program");
  ReviewFile other(folder / "other", trail, ReviewFile::Use::mark);
  EXPECT_THROW(other.continueAfter(position), Error);
  other.add(std::vector<NewMark>{markOf(2)});
  EXPECT_THROW(other.continueAfter(position), Error);
}

TEST_F(Review, OfEightAtOnceLosesNothing) {
  create();
  constexpr int reviewers = 8;
  constexpr int marksOfEach = 20;
  std::vector<std::thread> threads;
  for (int reviewer = 0; reviewer < reviewers; ++reviewer)
    threads.emplace_back([this, reviewer] {
      ReviewFile review(file(), trail, ReviewFile::Use::mark, std::chrono::minutes{5});
      for (int i = 0; i < marksOfEach; ++i) {
        const NewMark mark = markOf(reviewer * marksOfEach + i);
        review.add({&mark, 1});
      }
    });
  for (std::thread& thread : threads) thread.join();
  std::map<std::int64_t, int> count;
  for (const ReviewMark& mark : marks()) ++count[mark.number.value()];
  ASSERT_THAT(count, SizeIs(reviewers * marksOfEach));
  for (const auto& [number, times] : count) EXPECT_EQ(times, 1) << number;
}

TEST_F(Review, OfAnotherTrailIsRefused) {
  ReviewFile::create(file(), {"another server", "D"}, "a program");
  EXPECT_THAT(failure(), AllOf(HasSubstr("database D on another server"), HasSubstr("database D on a server")));
}

TEST(ReviewedTrails, AreThoseThatSnapshotsWereTakenOf) {
  Manifest::Source source;
  source.server = "/snapshots";
  source.database = "D";
  EXPECT_TRUE(isSameTrail(trailOf(source), {"/snapshots", "D"}));
  source.snapshot = db::SnapshotOrigin{"A Server", "d", "2026-11-22T16:05:03+01:00"};
  EXPECT_TRUE(isSameTrail(trailOf(source), trail));
  EXPECT_FALSE(isSameTrail(trailOf(source), {"a server", "E"}));
}

TEST_F(Review, SaysWhatAFileIsInstead) {
  EXPECT_THAT(failure(), HasSubstr("does not exist"));
  std::filesystem::create_directory(file());
  EXPECT_THAT(failure(), HasSubstr("is no review file"));
  std::filesystem::remove(file());
  for (const char* const text :
       {"", "a text that is longer than the head of a database has to be, so that it is read"}) {
    writeFileAtomically(file(), text);
    EXPECT_THAT(failure(), HasSubstr("is no review file")) << text;
  }
  std::filesystem::remove(file());
  test::writeAuditDatabase(file(), {{1, "2004-03-07 00:00:00.100", "UATable", "1", "CS"}});
  EXPECT_THAT(failure(ReviewFile::Use::mark), HasSubstr("is no review file"));
}

TEST_F(Review, OfANewerVersionSaysSo) {
  create();
  test::DatabaseWriter(file()).run(
      "DROP TRIGGER Korvel_Review_Facts_Stay; UPDATE Korvel_Review SET Value = '2' WHERE Name = 'version'");
  EXPECT_THAT(failure(), AllOf(HasSubstr("has version 2"), HasSubstr("needs to be updated")));
}

TEST_F(Review, ThatIsLockedSaysSo) {
  create();
  test::DatabaseWriter other(file());
  other.run("BEGIN EXCLUSIVE");
  EXPECT_THAT(failure(), HasSubstr("in use by another program"));
}

TEST_F(Review, AddsNothingWhereItIsLocked) {
  create();
  ReviewFile review(file(), trail, ReviewFile::Use::mark, milliseconds{1});
  {
    test::DatabaseWriter other(file());
    other.run("BEGIN IMMEDIATE");
    EXPECT_THROW(review.add(std::vector<NewMark>{markOf(1)}), Error);
  }
  EXPECT_THAT(marks(), IsEmpty());
  review.add(std::vector<NewMark>{markOf(2)});
  EXPECT_THAT(marks(), ElementsAre(Field(&ReviewMark::number, 2)));
}

TEST_F(Review, ForReadingWritesNothing) {
  create();
  const std::string before = readFile(file());
  ReviewFile review(file(), trail, ReviewFile::Use::read);
  EXPECT_THROW(review.add(std::vector<NewMark>{markOf(1)}), Error);
  EXPECT_THAT(review.takeNewMarks(), IsEmpty());
  EXPECT_EQ(readFile(file()), before);
}

TEST_F(Review, LetsNoProgramChangeAMark) {
  create();
  ReviewFile(file(), trail, ReviewFile::Use::mark).add(std::vector<NewMark>{markOf(1), markOf(2)});
  test::DatabaseWriter other(file());
  EXPECT_ANY_THROW(other.run("UPDATE Korvel_Review_Marks SET Kind = 'reviewed'"));
  EXPECT_ANY_THROW(other.run("DELETE FROM Korvel_Review_Marks WHERE Place = 1"));
  EXPECT_ANY_THROW(other.run("UPDATE Korvel_Review SET Value = 'other' WHERE Name = 'server'"));
  EXPECT_THAT(marks(), SizeIs(2));
}

/// What another program may do to a file's marks, by force, and the mark that is named.
struct Tampering {
  const char* statement;
  const char* sentence;
};

class TamperedReview : public Review, public testing::WithParamInterface<Tampering> {};

TEST_P(TamperedReview, NamesTheMark) {
  create();
  ReviewFile(file(), trail, ReviewFile::Use::mark)
      .add(std::vector<NewMark>{markOf(1), markOf(2, MarkKind::question), markOf(3), markOf(4)});
  test::DatabaseWriter(file()).run(std::string("DROP TRIGGER Korvel_Review_Marks_Stay;"
                                               "DROP TRIGGER Korvel_Review_Marks_Remain;"
                                               "DROP TRIGGER Korvel_Review_Facts_Stay;") +
                                   GetParam().statement);
  EXPECT_THAT(failure(), AllOf(HasSubstr("was changed by another program"), HasSubstr(GetParam().sentence)));
}

INSTANTIATE_TEST_SUITE_P(
    Marks, TamperedReview,
    testing::Values(Tampering{"UPDATE Korvel_Review_Marks SET Kind = 'reviewed' WHERE Place = 2", "mark 2 "},
                    Tampering{"UPDATE Korvel_Review_Marks SET Kind = 'praised' WHERE Place = 2", "mark 2 "},
                    Tampering{"UPDATE Korvel_Review_Marks SET User = 'another' WHERE Place = 1", "mark 1 "},
                    Tampering{"UPDATE Korvel_Review_Marks SET Comment = 'x' WHERE Place = 4", "mark 4 "},
                    Tampering{"UPDATE Korvel_Review_Marks SET Number = 9 WHERE Place = 3", "mark 3 "},
                    Tampering{"UPDATE Korvel_Review_Marks SET RowDigest = x'00' WHERE Place = 3", "mark 3 "},
                    Tampering{"UPDATE Korvel_Review_Marks SET Time = '2004' WHERE Place = 3", "mark 3 "},
                    Tampering{"DELETE FROM Korvel_Review_Marks WHERE Place = 2", "mark 2 "},
                    Tampering{"DELETE FROM Korvel_Review_Marks WHERE Place = 1", "mark 1 "},
                    Tampering{"UPDATE Korvel_Review SET Value = 'Eve' WHERE Name = 'user'", "mark 1 "},
                    Tampering{"UPDATE Korvel_Review_Marks SET Digest = NULL || '' WHERE 0;"
                              "INSERT INTO Korvel_Review_Marks SELECT 5, Number, RowDigest, Kind, Comment, User, "
                              "Computer, Time, Digest FROM Korvel_Review_Marks WHERE Place = 4",
                              "mark 5 "}));

TEST_F(Review, WithAnyByteChangedIsTheSameOrRefused) {
  create();
  ReviewFile(file(), trail, ReviewFile::Use::mark).add(std::vector<NewMark>{markOf(1, MarkKind::question, "why")});
  const std::string whole = readFile(file());
  std::size_t refused = 0;
  constexpr std::size_t step = 13;
  for (std::size_t at = 0; at < whole.size(); at += step) {
    std::string changed = whole;
    changed[at] = static_cast<char>(~changed[at]);
    std::ofstream(file(), std::ios::binary) << changed;
    try {
      const auto found = marks();
      // A file that names no marks any more differs from one that had none; the last ones may be missing.
      if (!found.empty()) {
        EXPECT_EQ(found.front().comment, "why") << at;
        EXPECT_EQ(found.front().row, Sha256::of("row 1")) << at;
      }
    } catch (const Error& error) {
      EXPECT_THAT(error.description(), Not(IsEmpty())) << at;
      ++refused;
    }
  }
  EXPECT_GT(refused, 0U);
}

TEST_F(Review, ThatIsCutIsRefused) {
  create();
  ReviewFile(file(), trail, ReviewFile::Use::mark).add(std::vector<NewMark>{markOf(1), markOf(2)});
  const std::string whole = readFile(file());
  for (const std::size_t size : {whole.size() / 2, whole.size() - 4096, std::size_t{100}}) {
    std::ofstream(file(), std::ios::binary) << whole.substr(0, size);
    EXPECT_THAT(failure(), testing::AnyOf(HasSubstr("is damaged or cut"), HasSubstr("is no review file"))) << size;
  }
}

}  // namespace
}  // namespace korvel::evidence
