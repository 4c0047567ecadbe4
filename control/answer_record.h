#pragma once

#include <string>

#include "evidence/answer_record.h"
#include "evidence/manifest.h"
#include "query/completion_report.h"
#include "query/date_range.h"
#include "query/filter_tree.h"
#include "query/standard_query.h"

namespace korvel::control {

/// The record of a query that runs: of whom it is asked, and when it began and ended. Made before the query, of the
/// database that is selected then. The records say nothing of who prints or exports an answer, for that may be asked of
/// a directory in the network. Notes are in English, as all of a manifest is.
class AnswerRecord {
 public:
  AnswerRecord();

  /// Of rows that no query has brought.
  [[nodiscard]] static evidence::Manifest ofNoQuery();

  /// The platform's connector, which remembers who answers.
  [[nodiscard]] query::Connector connector() const;

  // Its answer has come.

  /// To the standard query; `lists` are filled.
  [[nodiscard]] evidence::Manifest standard(const query::CategoryFlags& flags, const query::DateRange& range,
                                            const query::QueryReport& report, const query::ResultLists& lists) const;
  /// The same, completed.
  [[nodiscard]] evidence::Manifest completed(const query::CategoryFlags& flags, const query::DateRange& range,
                                             const query::CompletionReport& report,
                                             const query::ResultLists& lists) const;
  /// To a query of the user's own.
  [[nodiscard]] evidence::Manifest custom(const std::string& text, std::size_t rows) const;

 private:
  [[nodiscard]] evidence::Manifest ended() const;

  evidence::AnsweringServer server_;
  evidence::Manifest begun_;
};

}  // namespace korvel::control
