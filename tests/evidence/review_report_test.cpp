#include "evidence/review_report.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "evidence/origin.h"
#include "tests/evidence/record_list.h"
#include "tests/support/temporary_folder.h"

namespace korvel::evidence {
namespace {

using results::ResultList;
using results::RowId;
using test::listOf;
using test::Record;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

std::string plain(std::size_t number) {
  return std::to_string(number);
}

Record record(int number, const std::string& value = "5") {
  return {{"Nr", std::to_string(number)},
          {"DateTime", "2004-03-09 12:00:00.000"},
          {"EventType", "UPDATE"},
          {"EventItem", "Limit"},
          {"OldValue", "4"},
          {"NewValue", value}};
}

class ReviewReports : public testing::Test {
 protected:
  ReviewReports() { ReviewFile::create(path(), {"a server", "D"}, "a program 1.2"); }
  [[nodiscard]] std::filesystem::path path() const { return folder / "batch.review"; }
  void mark(const ResultList& list, std::uint32_t row, MarkKind kind, const std::string& comment = {}) const {
    const RecordIdentity identity = RecordIdentifier::of(list).value().identityOf(RowId{row});
    const NewMark made = {identity.number, identity.digest, kind, comment};
    ReviewFile(path(), std::nullopt, ReviewFile::Use::mark).add({&made, 1});
  }
  [[nodiscard]] ReviewReport report(const ResultList* answer = nullptr) const {
    ReviewFile file(path(), std::nullopt, ReviewFile::Use::read);
    ReviewMarks marks;
    marks.add(file.takeNewMarks());
    return makeReviewReport(file, marks, answer);
  }

  test::TemporaryFolder folder;
  settings::LanguageOffset english;
};

TEST_F(ReviewReports, OfAFileWithoutMarksIsEmpty) {
  const ReviewReport made = report();
  EXPECT_EQ(made.file, "batch.review");
  EXPECT_THAT(made.records, IsEmpty());
  EXPECT_THAT(made.reviewers, IsEmpty());
  EXPECT_THAT(reviewReportSentences(made, english, plain), ElementsAre("Reviewed: 0", "Open questions: 0"));
  EXPECT_EQ(reviewReportList(made, english).rowCount(), 0U);
}

TEST_F(ReviewReports, BeginWithWhatIsOpen) {
  const ResultList before = listOf({record(1), record(2), record(3), record(4)});
  mark(before, 0, MarkKind::reviewed);
  mark(before, 1, MarkKind::question, "who was it?");
  mark(before, 2, MarkKind::reviewed, "as agreed");
  const ResultList now = listOf({record(1), record(2), record(3, "6"), record(4), record(5), record(7)});
  const ReviewReport made = report(&now);
  ASSERT_THAT(made.records, SizeIs(3));
  EXPECT_EQ(made.records[0].number, 2);
  EXPECT_EQ(made.records[0].review, RowReview::question);
  EXPECT_EQ(made.records[1].number, 3);
  EXPECT_EQ(made.records[1].review, RowReview::changed);
  EXPECT_EQ(made.records[1].entry, "2004-03-09 12:00:00.000 UPDATE Limit: 4 -> 6");
  EXPECT_EQ(made.records[2].number, 1);
  EXPECT_EQ(made.records[2].review, RowReview::reviewed);
  EXPECT_THAT(made.notReviewed, ElementsAre(ReviewReport::Numbers{4, 5}, ReviewReport::Numbers{7, 7}));
  EXPECT_THAT(reviewReportSentences(made, english, plain),
              ElementsAre("1 of 6 reviewed", "Open questions: 1", "Changed since reviewed: 1"));
  const ResultList list = reviewReportList(made, english);
  ASSERT_EQ(list.rowCount(), 3U);
  EXPECT_EQ(list.text({0}, {0}), "Question");
  EXPECT_EQ(list.text({0}, {4}), "who was it?");
  EXPECT_EQ(list.text({1}, {0}), "Changed since reviewed");
  EXPECT_EQ(list.text({2}, {3}), "Reviewed");
  EXPECT_EQ(list.text({2}, {5}), systemUser());
}

TEST_F(ReviewReports, HaveAllMarksOfARecordThatChangedTwice) {
  const ResultList first = listOf({record(1, "a")});
  const ResultList second = listOf({record(1, "b")});
  const ResultList third = listOf({record(1, "c")});
  mark(first, 0, MarkKind::reviewed, "one");
  mark(second, 0, MarkKind::question, "two");
  const ReviewReport made = report(&third);
  ASSERT_THAT(made.records, SizeIs(1));
  EXPECT_EQ(made.records[0].review, RowReview::changed);
  EXPECT_THAT(made.records[0].marks, SizeIs(2));
}

TEST_F(ReviewReports, SayWhatIsNotInTheAnswer) {
  const ResultList before = listOf({record(1), record(2)});
  mark(before, 0, MarkKind::reviewed);
  mark(before, 1, MarkKind::question, "why");
  const ResultList now = listOf({record(1)});
  const ReviewReport made = report(&now);
  EXPECT_EQ(reviewReportList(made, english).text({0}, {0}), "Question, not in this answer");
  EXPECT_EQ(reviewReportList(made, english).text({1}, {0}), "Reviewed");
  EXPECT_THAT(made.notReviewed, IsEmpty());
}

TEST_F(ReviewReports, AsJsonHoldEverything) {
  const ResultList list = listOf({record(1), record(2), {{"NewValue", "no number"}}});
  mark(list, 0, MarkKind::question, "wer war Małgorzata \xFF?");
  mark(list, 0, MarkKind::reviewed, "solved");
  const auto json = nlohmann::json::parse(reviewReportJson(report(&list)));
  EXPECT_EQ(json["format"], "korvel-audit-review-report");
  EXPECT_EQ(json["trail"]["database"], "D");
  EXPECT_EQ(json["marks"], 2);
  EXPECT_EQ(json["lastDigest"].get<std::string>().size(), 64U);
  EXPECT_EQ(json["answer"]["records"], 3);
  EXPECT_EQ(json["answer"]["reviewed"], 1);
  EXPECT_EQ(json["answer"]["notReviewedNumbers"][0]["first"], 2);
  EXPECT_EQ(json["answer"]["notReviewedWithoutNumber"], 1);
  ASSERT_EQ(json["records"].size(), 1U);
  EXPECT_EQ(json["records"][0]["state"], "reviewed");
  EXPECT_EQ(json["records"][0]["marks"][0]["kind"], "question");
  EXPECT_EQ(json["records"][0]["marks"][0]["comment"], "wer war Małgorzata �?");
  EXPECT_EQ(json["records"][0]["marks"][1]["comment"], "solved");
  EXPECT_EQ(json["reviewers"][0]["marks"], 2);
}

TEST_F(ReviewReports, HeadPagesWithTheFileAndItsReviewers) {
  const ResultList list = listOf({record(1), record(2), record(9)});
  mark(list, 0, MarkKind::reviewed);
  output::PageHead head;
  head.facts.push_back({"Records", "3"});
  addReviewFacts(head, report(&list), english, plain);
  ASSERT_THAT(head.facts, SizeIs(5));
  EXPECT_EQ(head.facts[0].name, "Review file");
  EXPECT_THAT(head.facts[0].text, HasSubstr("batch.review, created 20"));
  EXPECT_THAT(head.facts[1].text, HasSubstr(systemUser() + ": 1 marks, 20"));
  EXPECT_EQ(head.facts[2].name, "Not reviewed");
  EXPECT_EQ(head.facts[2].text, "2 (2, 9)");
  EXPECT_EQ(head.facts[3].name, "Digest of the last mark");
  EXPECT_EQ(head.facts[4].name, "Records");
}

TEST_F(ReviewReports, CountManyGapsWithoutNamingThemAll) {
  std::vector<Record> records;
  for (int i = 0; i < 100; ++i) records.push_back(record(2 * i + 1));
  const ResultList list = listOf(records);
  output::PageHead head;
  addReviewFacts(head, report(&list), english, plain);
  EXPECT_THAT(head.facts[1].text, testing::StartsWith("100 (1, 3, 5, "));
  EXPECT_THAT(head.facts[1].text, testing::EndsWith(", 59, …)"));
}

TEST_F(ReviewReports, AreMadeOfAuditTrailsAlone) {
  ResultList list(results::RowFilling::whole);
  list.setColumns({{"Nr", results::standardColumnWidth, 0}});
  EXPECT_THROW((void)report(&list), Error);
}

}  // namespace
}  // namespace korvel::evidence
