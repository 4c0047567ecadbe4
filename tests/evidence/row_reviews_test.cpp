#include "evidence/row_reviews.h"

#include <gmock/gmock.h>

#include "tests/evidence/record_list.h"

namespace korvel::evidence {
namespace {

using results::ResultList;
using results::RowId;
using test::listOf;
using test::Record;

Record record(int number, const std::string& value = "a") {
  return {{"Nr", std::to_string(number)}, {"DateTime", "2004-03-09 12:00:00.000"}, {"NewValue", value}};
}

ReviewMark markOf(const ResultList& list, std::uint32_t row, MarkKind kind, const std::string& comment = {}) {
  const RecordIdentity identity = RecordIdentifier::of(list).value().identityOf(RowId{row});
  ReviewMark mark;
  mark.number = identity.number;
  mark.row = identity.digest;
  mark.kind = kind;
  mark.comment = comment;
  return mark;
}

TEST(RowReviews, FollowTheLastMarkButForComments) {
  const ResultList list = listOf({record(1), record(2), record(3), record(4)});
  ReviewMarks marks;
  marks.add({markOf(list, 0, MarkKind::reviewed), markOf(list, 1, MarkKind::question),
             markOf(list, 2, MarkKind::question), markOf(list, 2, MarkKind::reviewed),
             markOf(list, 2, MarkKind::comment, "all right"), markOf(list, 3, MarkKind::comment, "odd")});
  const auto review = reviewOf(list, marks);
  ASSERT_TRUE(review);
  EXPECT_EQ(review->of(RowId{0}), RowReview::reviewed);
  EXPECT_EQ(review->of(RowId{1}), RowReview::question);
  EXPECT_EQ(review->of(RowId{2}), RowReview::reviewed);
  EXPECT_EQ(review->of(RowId{3}), RowReview::none);
  EXPECT_THAT(review->hasComment, testing::ElementsAre(false, false, true, true));
  EXPECT_EQ(review->records, 4U);
  EXPECT_EQ(review->count(RowReview::reviewed), 2U);
  EXPECT_EQ(review->count(RowReview::question), 1U);
  EXPECT_EQ(review->count(RowReview::none), 1U);
}

TEST(RowReviews, SayWhatChangedSince) {
  const ResultList before = listOf({record(1), record(2), record(3), record(4)});
  ReviewMarks marks;
  marks.add({markOf(before, 0, MarkKind::reviewed), markOf(before, 1, MarkKind::question),
             markOf(before, 2, MarkKind::comment, "seen")});
  const ResultList now = listOf({record(1, "b"), record(2, "b"), record(3, "b"), record(4, "b")});
  const auto review = reviewOf(now, marks);
  EXPECT_EQ(review->of(RowId{0}), RowReview::changed);
  EXPECT_EQ(review->of(RowId{1}), RowReview::changed);
  EXPECT_EQ(review->of(RowId{2}), RowReview::none);
  EXPECT_EQ(review->of(RowId{3}), RowReview::none);
  EXPECT_EQ(review->count(RowReview::changed), 2U);
  marks.add({markOf(now, 0, MarkKind::reviewed)});
  EXPECT_EQ(reviewOf(now, marks)->of(RowId{0}), RowReview::reviewed);
  EXPECT_EQ(reviewOf(before, marks)->of(RowId{0}), RowReview::reviewed);
}

TEST(RowReviews, OfANumberUsedTwiceAreApart) {
  const ResultList list = listOf({record(5, "a"), record(5, "b")});
  ReviewMarks marks;
  marks.add({markOf(list, 0, MarkKind::reviewed)});
  const auto review = reviewOf(list, marks);
  EXPECT_EQ(review->of(RowId{0}), RowReview::reviewed);
  EXPECT_EQ(review->of(RowId{1}), RowReview::none);
  EXPECT_EQ(review->records, 2U);
  const ResultList now = listOf({record(5, "c"), record(5, "b")});
  EXPECT_EQ(reviewOf(now, marks)->of(RowId{0}), RowReview::changed);
}

TEST(RowReviews, CountARecordOfSeveralCategoriesOnce) {
  const ResultList list = listOf({record(1), record(2), record(1)});
  ReviewMarks marks;
  marks.add({markOf(list, 0, MarkKind::reviewed)});
  const auto review = reviewOf(list, marks);
  EXPECT_EQ(review->records, 2U);
  EXPECT_EQ(review->count(RowReview::reviewed), 1U);
  EXPECT_EQ(review->of(RowId{2}), RowReview::reviewed);
}

TEST(RowReviews, KnowRowsWithoutANumberByTheirDigest) {
  const ResultList list = listOf({{{"NewValue", "a"}}, {{"NewValue", "b"}}, record(1)});
  ReviewMarks marks;
  marks.add({markOf(list, 0, MarkKind::reviewed)});
  EXPECT_TRUE(marks.areUnder(std::nullopt));
  EXPECT_FALSE(marks.areUnder(1));
  const auto review = reviewOf(list, marks);
  EXPECT_EQ(review->of(RowId{0}), RowReview::reviewed);
  EXPECT_EQ(review->of(RowId{1}), RowReview::none);
  EXPECT_EQ(review->records, 3U);
}

TEST(RowReviews, CountRecordsThatAFilterHides) {
  ResultList list = listOf({record(1, "a"), record(2, "b")});
  ReviewMarks marks;
  marks.add({markOf(list, 1, MarkKind::reviewed)});
  results::RowFilter filter;
  filter.columns.push_back({.column = {0}, .values = {{"1", false}}});
  list.setFilter(filter);
  ASSERT_EQ(list.rowCount(), 1U);
  EXPECT_EQ(reviewOf(list, marks)->records, 2U);
  EXPECT_EQ(reviewOf(list, marks)->count(RowReview::reviewed), 1U);
}

TEST(RowReviews, AreThoseOfAuditTrailsAlone) {
  ResultList list(results::RowFilling::whole);
  list.setColumns({{"Nr", results::standardColumnWidth, 0}});
  EXPECT_FALSE(reviewOf(list, {}));
  EXPECT_TRUE(reviewOf(listOf({}), {}));
}

TEST(ReviewMarks, AreListedByNumber) {
  const ResultList list = listOf({record(1), record(2)});
  ReviewMarks marks;
  marks.add({markOf(list, 0, MarkKind::question, "why"), markOf(list, 1, MarkKind::reviewed)});
  marks.add({markOf(list, 0, MarkKind::reviewed, "because")});
  const auto under = marks.under(1);
  ASSERT_EQ(under.size(), 2U);
  EXPECT_EQ(under[0]->comment, "why");
  EXPECT_EQ(under[1]->comment, "because");
  EXPECT_TRUE(marks.under(3).empty());
  EXPECT_EQ(marks.all().size(), 3U);
}

}  // namespace
}  // namespace korvel::evidence
