#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "evidence/review_file.h"
#include "evidence/row_digest.h"
#include "results/result_list.h"

namespace korvel::evidence {

/// How far the review of a row has come.
enum class RowReview : std::uint8_t {
  none,      ///< nobody has marked it; a comment alone does not change that
  reviewed,  ///< its last mark but for comments
  question,  ///< its last mark but for comments
  changed    ///< another row was marked so under its entry number, and is no longer there
};
inline constexpr std::size_t rowReviewCount = 4;

/// What a user reads: the key of the text, by RowReview.
inline constexpr std::array<std::string_view, rowReviewCount> rowReviewTexts = {
    "review.none", "review.reviewed", "review.question", "review.changedSince"};

/// What the marks of a review say of rows.
class ReviewMarks {
 public:
  /// Marks that follow those before.
  void add(const std::vector<ReviewMark>& marks);

  /// All of them, in the order in which they were written.
  [[nodiscard]] const std::vector<ReviewMark>& all() const noexcept { return marks_; }
  /// What the marks of this very row say: never that it changed.
  [[nodiscard]] RowReview ofRow(const Digest& row) const;
  [[nodiscard]] bool hasComment(const Digest& row) const;
  /// Whether there are marks under this number, or, for none, of rows without a number.
  [[nodiscard]] bool areUnder(std::optional<std::int64_t> number) const { return byNumber_.contains(number); }
  /// The marks under a number, in their order; of what the row was before, too.
  [[nodiscard]] std::vector<const ReviewMark*> under(std::optional<std::int64_t> number) const;

 private:
  struct Row {
    RowReview review = RowReview::none;
    bool hasComment = false;
  };
  struct DigestHash {
    std::size_t operator()(const Digest& digest) const noexcept;
  };

  std::vector<ReviewMark> marks_;
  std::unordered_map<Digest, Row, DigestHash> rows_;
  std::unordered_map<std::optional<std::int64_t>, std::vector<std::size_t>> byNumber_;  ///< places in `marks_`
};

/// A record's entry number and digest.
struct RecordIdentity {
  std::optional<std::int64_t> number;
  Digest digest;
};

/// Tells the records of a list's store by number and digest.
class RecordIdentifier {
 public:
  /// Nothing where the list's records are not those of an audit trail, with all of its columns.
  [[nodiscard]] static std::optional<RecordIdentifier> of(const results::ResultList& list);

  [[nodiscard]] std::optional<std::int64_t> numberOf(results::RowId record) const;
  [[nodiscard]] RecordIdentity identityOf(results::RowId record);

 private:
  RecordIdentifier(std::shared_ptr<const results::RowStore> store, results::ColumnIndex number);

  std::shared_ptr<const results::RowStore> store_;
  results::ColumnIndex number_;
  std::unique_ptr<RowDigester> digester_;
  const db::Field* fields_ = nullptr;  ///< that the digester is for
  std::vector<db::Cell> cells_;
};

/// How far the review of a list's records has come.
struct ListReview {
  std::vector<RowReview> reviews;                    ///< by RowId, of the whole store; `none` outside of the list
  std::vector<bool> hasComment;                      ///< by RowId
  std::array<std::size_t, rowReviewCount> counts{};  ///< records by RowReview
  std::size_t records = 0;                           ///< one that stands in the list more than once counts once

  [[nodiscard]] RowReview of(results::RowId record) const { return reviews.at(record.value); }
  [[nodiscard]] std::size_t count(RowReview review) const { return counts.at(static_cast<std::size_t>(review)); }
};

/// What marks say of all records of a list, those that a filter hides included. Only rows whose number has marks are
/// digested. Nothing where the list's records are not those of an audit trail. Throws Error when memory runs out.
[[nodiscard]] std::optional<ListReview> reviewOf(const results::ResultList& list, const ReviewMarks& marks);

}  // namespace korvel::evidence
