#include "evidence/row_reviews.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <set>
#include <span>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "query/audit_record.h"
#include "results/memory_watch.h"

namespace korvel::evidence {

namespace {

using results::ResultList;
using results::RowId;

constexpr std::string_view numberColumn = "Nr";
/// A record stands at most once a category in a list. More rows of one number are records of their own.
constexpr std::size_t mostCompared = 64;

class Judging {
 public:
  Judging(const ResultList& list, RecordIdentifier& identifier, const ReviewMarks& marks)
      : list_(list), identifier_(identifier), marks_(marks) {}

  ListReview judge() {
    const std::size_t rows = list_.store() == nullptr ? 0 : list_.store()->rowCount();
    found_.reviews.assign(rows, RowReview::none);
    found_.hasComment.assign(rows, false);
    collectEntries();
    for (std::size_t begin = 0, end = 0; begin < entries_.size(); begin = end) {
      for (end = begin + 1; end < entries_.size() && entries_[end].number == entries_[begin].number;) ++end;
      judgeNumber(std::span(entries_).subspan(begin, end - begin));
    }
    return std::move(found_);
  }

 private:
  /// A row of the list.
  struct Entry {
    std::optional<std::int64_t> number;
    RowId record;
  };
  /// A record, which may be several rows.
  struct Record {
    RowId first;
    Digest digest{};
    RowReview review = RowReview::none;
    bool hasComment = false;
  };

  void collectEntries() {
    entries_.reserve(list_.wholeRowCount());
    for (const RowId record : list_.wholeRows()) entries_.push_back({identifier_.numberOf(record), record});
    const auto isBefore = [](const Entry& a, const Entry& b) { return a.number < b.number; };
    if (!std::is_sorted(entries_.begin(), entries_.end(), isBefore))
      std::stable_sort(entries_.begin(), entries_.end(), isBefore);
  }

  /// The rows of one entry number.
  void judgeNumber(std::span<const Entry> rows) {
    const bool haveMarks = marks_.areUnder(rows.front().number);
    if (rows.size() == 1 && !haveMarks) return count(RowReview::none);
    records_.clear();
    recordOf_.clear();
    const bool areCompared = rows.front().number && rows.size() <= mostCompared;
    for (const Entry& row : rows) recordOf_.push_back(areCompared ? recordAt(row.record) : newRecord(row.record));
    if (haveMarks) judgeRecords(rows.front().number);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const Record& record = records_[recordOf_[i]];
      found_.reviews[rows[i].record.value] = record.review;
      found_.hasComment[rows[i].record.value] = record.hasComment;
    }
    for (const Record& record : records_) count(record.review);
  }

  std::size_t recordAt(RowId row) {
    for (std::size_t i = 0; i < records_.size(); ++i)
      if (list_.store()->isSameRecord(records_[i].first, row)) return i;
    return newRecord(row);
  }
  std::size_t newRecord(RowId row) {
    records_.push_back({row});
    return records_.size() - 1;
  }

  void judgeRecords(std::optional<std::int64_t> number) {
    for (Record& record : records_) {
      record.digest = identifier_.identityOf(record.first).digest;
      record.review = marks_.ofRow(record.digest);
      record.hasComment = marks_.hasComment(record.digest);
    }
    // Where numbers are used twice, a record is another one only if one that was marked is no longer there.
    if (!number || !aMarkedRecordIsGone(*number)) return;
    for (Record& record : records_)
      if (record.review == RowReview::none) record.review = RowReview::changed;
  }

  [[nodiscard]] bool aMarkedRecordIsGone(std::int64_t number) const {
    std::set<Digest> there;
    for (const Record& record : records_) there.insert(record.digest);
    const auto marks = marks_.under(number);
    return std::any_of(marks.begin(), marks.end(), [&there](const ReviewMark* mark) {
      return mark->kind != MarkKind::comment && !there.contains(mark->row);
    });
  }

  void count(RowReview review) {
    ++found_.records;
    ++found_.counts.at(static_cast<std::size_t>(review));
  }

  const ResultList& list_;
  RecordIdentifier& identifier_;
  const ReviewMarks& marks_;
  ListReview found_;
  std::vector<Entry> entries_;
  std::vector<Record> records_;        ///< of one number
  std::vector<std::size_t> recordOf_;  ///< of each of its rows
};

}  // namespace

std::size_t ReviewMarks::DigestHash::operator()(const Digest& digest) const noexcept {
  // Any part of a SHA-256 value is as good a hash as all of it.
  std::size_t hash = 0;
  std::memcpy(&hash, digest.bytes.data(), sizeof hash);
  return hash;
}

void ReviewMarks::add(const std::vector<ReviewMark>& marks) {
  for (const ReviewMark& mark : marks) {
    byNumber_[mark.number].push_back(marks_.size());
    marks_.push_back(mark);
    Row& row = rows_[mark.row];
    if (!mark.comment.empty()) row.hasComment = true;
    if (mark.kind == MarkKind::reviewed) row.review = RowReview::reviewed;
    if (mark.kind == MarkKind::question) row.review = RowReview::question;
  }
}

RowReview ReviewMarks::ofRow(const Digest& row) const {
  const auto found = rows_.find(row);
  return found == rows_.end() ? RowReview::none : found->second.review;
}

bool ReviewMarks::hasComment(const Digest& row) const {
  const auto found = rows_.find(row);
  return found != rows_.end() && found->second.hasComment;
}

std::vector<const ReviewMark*> ReviewMarks::under(std::optional<std::int64_t> number) const {
  std::vector<const ReviewMark*> marks;
  if (const auto found = byNumber_.find(number); found != byNumber_.end())
    for (const std::size_t place : found->second) marks.push_back(&marks_[place]);
  return marks;
}

RecordIdentifier::RecordIdentifier(std::shared_ptr<const results::RowStore> store, results::ColumnIndex number)
    : store_(std::move(store)), number_(number) {}

std::optional<RecordIdentifier> RecordIdentifier::of(const ResultList& list) {
  // A column more, of a query of the user's own, would make other digests of the same records.
  if (list.columns().size() != query::auditColumnCount) return std::nullopt;
  for (const query::AuditColumn& column : query::auditColumns())
    if (!query::auditColumnOf(list, column.name)) return std::nullopt;
  return RecordIdentifier(list.sharedStore(), query::auditColumnOf(list, numberColumn).value());
}

std::optional<std::int64_t> RecordIdentifier::numberOf(RowId record) const {
  return parseInteger<std::int64_t>(trimBlanks(store_->cell(record, number_).text));
}

RecordIdentity RecordIdentifier::identityOf(RowId record) {
  const auto fields = store_->fieldsOf(record);
  if (!digester_ || fields.data() != fields_ || fields.size() != cells_.size()) {
    digester_ = std::make_unique<RowDigester>(fields);
    fields_ = fields.data();
    cells_.resize(fields.size());
  }
  for (std::size_t column = 0; column < cells_.size(); ++column) cells_[column] = store_->cell(record, {column});
  return {numberOf(record), digester_->digestOf(cells_)};
}

std::optional<ListReview> reviewOf(const ResultList& list, const ReviewMarks& marks) {
  try {
    auto identifier = RecordIdentifier::of(list);
    if (!identifier) return std::nullopt;
    return Judging(list, *identifier, marks).judge();
  } catch (const std::bad_alloc&) {
    throw results::outOfMemory();
  }
}

}  // namespace korvel::evidence
