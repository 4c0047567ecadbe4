#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "evidence/review_file.h"
#include "evidence/row_reviews.h"
#include "output/page_head.h"
#include "results/result_list.h"
#include "settings/string_table.h"

namespace korvel::evidence {

/// Who reviewed what, when, and what is open.
struct ReviewReport {
  struct Reviewer {
    std::string user;
    std::size_t marks = 0;
    std::string first{};  ///< times of the first and the last mark
    std::string last{};
  };
  /// A record that has marks.
  struct Record {
    std::optional<std::int64_t> number;
    RowReview review = RowReview::none;
    bool isInAnswer = false;  ///< only of a report on an answer
    std::string entry{};      ///< what the record says, in short; empty where it is not in an answer
    std::vector<ReviewMark> marks{};
  };
  /// Entry numbers, the last one included.
  struct Numbers {
    std::int64_t first = 0;
    std::int64_t last = 0;
    friend bool operator==(const Numbers&, const Numbers&) = default;
  };

  std::string file;  ///< its name, without its folder
  ReviewFacts facts;
  Digest lastDigest;  ///< of the last mark: see ReviewFile
  std::size_t marks = 0;
  std::vector<Reviewer> reviewers;  ///< in the order of their first marks
  std::vector<Record> records;      ///< questions, then those that changed, then the others; by entry number
  // Of an answer whose review was asked for:
  std::optional<ListReview> answer;
  std::vector<Numbers> notReviewed;          ///< entry numbers of records without a mark but comments
  std::size_t notReviewedWithoutNumber = 0;  ///< records

  /// Records of which this is said.
  [[nodiscard]] std::size_t count(RowReview review) const;
};

/// The report on a review file, of which all marks were taken into `marks`, and on an answer where there is one, the
/// records that a filter hides included. Throws Error where the answer's records are not those of an audit trail, or
/// when memory runs out.
[[nodiscard]] ReviewReport makeReviewReport(const ReviewFile& file, const ReviewMarks& marks,
                                            const results::ResultList* answer);

/// The report as JSON in UTF-8, ended by a line feed.
[[nodiscard]] std::string reviewReportJson(const ReviewReport& report);

/// The report as a list with a row for each mark.
[[nodiscard]] results::ResultList reviewReportList(const ReviewReport& report,
                                                   const settings::LanguageOffset& language);

/// What is to be said first of all, in one language; `count` writes a number.
[[nodiscard]] std::vector<std::string> reviewReportSentences(const ReviewReport& report,
                                                             const settings::LanguageOffset& language,
                                                             const std::function<std::string(std::size_t)>& count);

/// Puts what a report is of before the other facts of a head: the file, who reviewed, what is not reviewed.
void addReviewFacts(output::PageHead& head, const ReviewReport& report, const settings::LanguageOffset& language,
                    const std::function<std::string(std::size_t)>& count);

}  // namespace korvel::evidence
